// Failures of the system's crypto functions: the log lines, that nothing is sent authenticated or
// in the clear, and that everything opened is closed.
#include "exports/support/v3_test.h"

#include <wincrypt.h>

namespace vndiscover {
namespace {

int g_open;  // contexts, keys and hashes

// A function of the system that opens or closes one of them.
template <auto Function, int Change>
struct Counted;
template <class... Arguments, BOOL(WINAPI* Function)(Arguments...), int Change>
struct Counted<Function, Change> {
    static BOOL WINAPI Call(Arguments... arguments) {
        const BOOL done = Function(arguments...);
        if (done) g_open += Change;
        return done;
    }
};

// Replaces a function with any arguments, which the caller removes from the stack.
BOOL Fail() {
    SetLastError(5);
    return FALSE;
}
LONG FailWithStatus() { return static_cast<LONG>(0xC0000001); }

class V3CryptoFailures : public V3Test {
  protected:
    // One encrypted answer to every request.
    V3CryptoFailures() {
        V3Datagram answer;
        answer.flagsTlv = Tlv(0x04, {0x03});
        answer.salt = Bytes(8, 1);
        answer.scopedTlv = Tlv(0x04, Bytes(16, 2));
        DeviceWith({{V3Report()}}, {{answer.Build()}});
    }
    void Ask(const wchar_t* auth, BYTE usePriv, const char* line) {
        user = {L"user", 1, usePriv, auth, VN_PRIV_DES};
        log.Clear();
        char value[8] = "before";
        EXPECT_EQ(0, user.Ask([&](auto... security) {
            return module.GetSnmpRequestV3("10.77.1.11", kSysName, value, 8, nullptr, 0, 0,
                                           security...);
        }));
        EXPECT_STREQ("before", value);
        EXPECT_TRUE(log.Has(line)) << line;
        EXPECT_EQ(0, g_open) << line;
    }
    // Of CryptoAPI.
    const ImportPatch counted[6] = {
        {module.Handle(), "CryptAcquireContextA", Counted<CryptAcquireContextA, 1>::Call},
        {module.Handle(), "CryptImportKey", Counted<CryptImportKey, 1>::Call},
        {module.Handle(), "CryptCreateHash", Counted<CryptCreateHash, 1>::Call},
        {module.Handle(), "CryptReleaseContext", Counted<CryptReleaseContext, -1>::Call},
        {module.Handle(), "CryptDestroyKey", Counted<CryptDestroyKey, -1>::Call},
        {module.Handle(), "CryptDestroyHash", Counted<CryptDestroyHash, -1>::Call}};
    // The last request claims to be authenticated, but its HMAC is zeros.
    void ExpectUnsigned(size_t size) {
        V3Datagram request = V3RequestFields(kSysName);
        request.flagsTlv = Tlv(0x04, {0x05});
        request.macTlv = Tlv(0x04, Bytes(size, 0));
        EXPECT_EQ(request.Build(), Asked().back());
    }
};

TEST_F(V3CryptoFailures, CryptoApiHashFailuresSendNothingAuthenticated) {
    const struct {
        const char* function;
        const wchar_t* auth;
        const char* line;
    } rows[] = {{"CryptAcquireContextA", VN_AUTH_MD5, "Error [5] CryptAcquireConext failed.\n"},
                {"CryptCreateHash", VN_AUTH_MD5, "Error CALG_MD5 [5] CryptCreateHash failed.\n"},
                {"CryptCreateHash", VN_AUTH_SHA1, "Error CALG_SHA1 [5] CryptCreateHash failed.\n"},
                {"CryptHashData", VN_AUTH_MD5, "Error [5] CryptHashData failed.\n"},
                {"CryptHashData", VN_AUTH_SHA1, "Error CALG_SHA1 [5] CryptHashData failed.\n"},
                {"CryptGetHashParam", VN_AUTH_SHA1, "Error [5] CryptGetHashParam failed.\n"},
                {"CryptImportKey", VN_AUTH_SHA1, "Err 5\n"}};
    for (const auto& row : rows) {
        const ImportPatch failing(module.Handle(), row.function, Fail);
        Ask(row.auth, 0, row.line);
        ExpectUnsigned(12);
    }
    static HCRYPTHASH withoutItsHash;  // Wine hashes with it all the same, Windows does not
    const ImportPatch choosing(module.Handle(), "CryptSetHashParam",
                               [](HCRYPTHASH hash, DWORD, const BYTE*, DWORD) {
                                   withoutItsHash = hash;
                                   return Fail();
                               });
    const ImportPatch hashing(module.Handle(), "CryptHashData",
                              [](HCRYPTHASH hash, const BYTE* bytes, DWORD count, DWORD flags) {
                                  EXPECT_NE(withoutItsHash, hash);
                                  return CryptHashData(hash, bytes, count, flags);
                              });
    Ask(VN_AUTH_SHA1, 0, "Err 5\n");
    ExpectUnsigned(12);
}

TEST_F(V3CryptoFailures, CipherFailuresSendNothingInTheClear) {
    for (const char* function : {"CryptSetKeyParam", "CryptDecrypt", "CryptEncrypt"}) {
        const ImportPatch failing(module.Handle(), function, Fail);
        Ask(VN_AUTH_SHA256, 1, "Err 5\n");
    }
    const Bytes sent = Asked().back();
    EXPECT_EQ(Hex("04 00"), Bytes(sent.end() - 2, sent.end()));
}

TEST_F(V3CryptoFailures, CngFailuresSendNothingInTheClear) {
    for (const std::string name : {"BCryptOpenAlgorithmProvider", "BCryptGetProperty",
                                   "BCryptCreateHash", "BCryptHashData", "BCryptFinishHash"}) {
        LookupPatch lookup(module);
        lookup.Set(name, FailWithStatus);
        Ask(VN_AUTH_SHA256, 0, ("**** Error 0xc0000001 returned by " + name + "\n").c_str());
        ExpectUnsigned(24);
    }
    LookupPatch lookup(module);
    lookup.found["BCryptDestroyHash"] = nullptr;
    Ask(VN_AUTH_SHA256, 0, "**** Error 0xc0000139 returned by BCryptOpenAlgorithmProvider\n");
    ExpectUnsigned(24);
}

}  // namespace
}  // namespace vndiscover
