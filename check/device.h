// A printer that answers SNMPv1 and SNMPv3 requests, one datagram at a time.
#pragma once

#include <map>
#include <mutex>

#include "check/crypto.h"

namespace check {

constexpr char kModel[] = "VN LaserPro 410";
constexpr char kModelOid[] = ".1.3.6.1.4.1.5963.43.5.1.1.1.1";
constexpr char kContactOid[] = ".1.3.6.1.2.1.1.4.0";
constexpr char kServicesOid[] = ".1.3.6.1.2.1.1.7.0";  // an INTEGER, 72
constexpr char kWriteCommunity[] = "secret";
constexpr char kAuthPassword[] = "check-auth-1", kPrivPassword[] = "check-priv-2";

enum class Cipher { kNone, kDes, kAes };

struct User {
    Digest digest = Digest::kNone;
    Cipher cipher = Cipher::kNone;
};

class Device {
  public:
    Device();

    // The protocols of the user kUserName, for SNMPv3 requests from now on.
    void SetUser(User user);
    // Empty if there is no answer; Problem then says why.
    Bytes Answer(const Bytes& request);
    std::string Problem() const;

    static constexpr char kUserName[] = "check";

  private:
    struct Variable {
        uint8_t tag;
        Bytes value;
    };
    struct V3Request;

    Bytes AnswerV1(const Bytes& request);
    Bytes AnswerV3(const Bytes& request);
    Bytes AnswerPdu(BerReader& pdu, bool isV3, bool mayWrite);
    Bytes Decrypted(const V3Request& message, const Bytes& cipherText);
    Bytes Message(const V3Request& message, uint8_t flags, const Bytes& scopedPdu);
    Bytes Nothing(const std::string& why);

    mutable std::mutex mutex_;
    std::map<Bytes, Variable> variables_;  // by OID; bytes happen to sort these few correctly
    User user_;
    Bytes authKey_, privKey_;
    std::string problem_;
};

}  // namespace check
