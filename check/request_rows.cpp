// Directed requests, answered by agents on loopback addresses.
#include <array>

#include "check/agent.h"
#include "check/device.h"
#include "check/rows.h"

namespace check {
namespace {

// Of the SNMPv1 agent, and of the SNMPv3 agent, which starts when the other has ended.
constexpr char kHost[] = "127.0.0.2", kSecureHost[] = "127.0.0.3";
constexpr uint16_t kSnmpPort = 161;

Agent::Answers From(Device& device) {
    return [&device](const Bytes& request) {
        const Bytes answer = device.Answer(request);
        return answer.empty() ? std::vector<Bytes>() : std::vector<Bytes>{answer};
    };
}

// False, with a row that says why: requests to `host` would not reach an agent of this program.
bool CanListen(Report& report, const std::string& name, const char* host) {
    const int error = UdpSocket(AF_INET).Bind(host, kSnmpPort);
    if (error == 0) return true;
    report.NotSeen(name, "an agent of ours on port 161",
                   "port 161 is taken or refused (" + Number(error) +
                       "): stop the SNMP service and run this again");
    return false;
}

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

void Version1Rows(Report& report, const Module& module) {
    Device device;
    const Agent agent(kHost, kSnmpPort, From(device));
    uint8_t raw[VN_REQUEST_VALUE_SIZE] = {};
    uint32_t type = 0;
    const auto rawText = [&](int32_t length) {
        const std::string value(raw, raw + (length > 0 ? length : 0));
        return Number(length) + " bytes, type " + Number(type) + ", " + Quoted(value);
    };
    const auto get = [&](const char* host, const char* oid) {
        return module.GetSnmpRequestRaw(host, oid, raw, sizeof raw, &type, 0, 0, nullptr, nullptr);
    };
    report.Add("get", "15 bytes, type 4, \"VN LaserPro 410\"", rawText(get(kHost, kModelOid)));

    VnResponseRecord record = {};
    const int32_t next =
        module.GetNextSnmpRequestRaw(kHost, kContactOid, &record, 0, 0, nullptr, nullptr);
    const Bytes oid(record.oid, record.oid + record.oidLength);
    report.Add("get-next", "1 byte, 72, the OID that follows",
               Number(next) + " byte, " + Number(record.value[0]) +
                   (oid == OidOf(kServicesOid) ? ", the OID that follows" : ", another OID"));
    report.Add("the address from which an agent on 127.0.0.2 answers", kHost, record.address);

    Bytes contact = BytesOf("Copy room");
    type = VN_TYPE_OCTET_STRING;
    module.SetSnmpRequestRaw(kHost, kContactOid, contact.data(), int32_t(contact.size()), &type, 0,
                             0, nullptr, kWriteCommunity);
    report.Add("set, then get", "9 bytes, type 4, \"Copy room\"", rawText(get(kHost, kContactOid)));

    char text[VN_REQUEST_VALUE_SIZE] = {};
    const auto typed = [&](const char* asked, uint32_t expected) {
        text[0] = '\0';
        module.GetSnmpRequest(kHost, asked, text, sizeof text, expected, 0, 0, nullptr, nullptr);
        return Quoted(text);
    };
    report.Add("typed get, INTEGER", "\"72\"", typed(kServicesOid, VN_TYPE_INTEGER));
    report.Add("typed get, OCTET STRING", Quoted(kModel), typed(kModelOid, VN_TYPE_OCTET_STRING));
    report.Add("typed get of another type", "\"\"", typed(kModelOid, VN_TYPE_INTEGER));
    char information[VN_INFORMATION_SIZE] = {};
    module.GetSnmpInformation(kHost, information, nullptr, nullptr);
    report.Add("information", Quoted(kModel), Quoted(information));
}

struct Protocol {
    const wchar_t* label;
    const char* name;
};
constexpr Protocol kDigests[] = {{nullptr, "no authentication"}, {VN_AUTH_MD5, "MD5"},
                                 {VN_AUTH_SHA1, "SHA-1"},        {VN_AUTH_SHA224, "SHA-224"},
                                 {VN_AUTH_SHA256, "SHA-256"},    {VN_AUTH_SHA384, "SHA-384"},
                                 {VN_AUTH_SHA512, "SHA-512"}};
constexpr Protocol kCiphers[] = {
    {nullptr, "no privacy"}, {VN_PRIV_DES, "DES"}, {VN_PRIV_AES, "AES"}};

std::wstring Wide(const char* ascii) { return std::wstring(ascii, ascii + strlen(ascii)); }

void Version3Row(Report& report, const Module& module, Device& device, size_t digest,
                 size_t cipher) {
    device.SetUser({static_cast<Digest>(digest), static_cast<Cipher>(cipher)});
    char text[VN_REQUEST_VALUE_SIZE] = {};
    uint32_t type = 0;
    module.GetSnmpRequestV3(
        kSecureHost, kModelOid, text, sizeof text, &type, 0, 0, Wide(Device::kUserName).c_str(),
        BYTE(digest != 0), Wide(kAuthPassword).c_str(), BYTE(cipher != 0),
        Wide(kPrivPassword).c_str(), kDigests[digest].label, kCiphers[cipher].label);
    const std::string problem = device.Problem();
    report.Add(std::string("v3 get, ") + kDigests[digest].name + ", " + kCiphers[cipher].name,
               Quoted(kModel), problem.empty() ? Quoted(text) : problem);
}

void Version3Rows(Report& report, const Module& module) {
    Device device;
    const Agent agent(kSecureHost, kSnmpPort, From(device));
    for (size_t digest = 0; digest < std::size(kDigests); ++digest) {
        for (size_t cipher = 0; cipher < (digest ? std::size(kCiphers) : 1); ++cipher) {
            Version3Row(report, module, device, digest, cipher);
        }
    }
    VnResponseRecord record = {};
    device.SetUser({Digest::kSha256, Cipher::kAes});
    module.GetNextSnmpRequestV3(kSecureHost, kContactOid, &record, 0, 0,
                                Wide(Device::kUserName).c_str(), 1, Wide(kAuthPassword).c_str(), 1,
                                Wide(kPrivPassword).c_str(), VN_AUTH_SHA256, VN_PRIV_AES);
    report.Add("v3 get-next, SHA-256, AES", "1 byte, 72",
               Number(record.valueLength) + " byte, " + Number(record.value[0]));
}

}  // namespace

std::future<std::optional<int32_t>> AskClosedPort(const Module& module) {
    return std::async(std::launch::async, [&module]() -> std::optional<int32_t> {
        if (UdpSocket(AF_INET).Bind(kHost, kSnmpPort) != 0) return std::nullopt;
        return module.GetSnmpRequestRaw(kHost, kModelOid, nullptr, 0, nullptr, 0, 0, nullptr,
                                        nullptr);
    });
}

void RequestRows(Report& report, const Module& module,
                 std::future<std::optional<int32_t>> closedPort) {
    report.Section("Directed requests to agents on loopback addresses");
    const auto length = closedPort.get();
    if (CanListen(report, "directed requests", kHost)) {
        report.Add("get from a closed port", "no answer (0)",
                   length ? "no answer (" + Number(*length) + ")" : "not sent: the port was taken");
        Version1Rows(report, module);
    }
    if (CanListen(report, "directed v3 requests", kSecureHost)) Version3Rows(report, module);
}

}  // namespace check
