#include "window/work/module_engine.h"

#include <vndiscover.h>

#include "device/sweeps.h"
#include "model/asking/json_request.h"
#include "platform/wide_text.h"
#include "values/oid_text.h"

namespace vndiscover::host {
namespace {

// The module's default community is public, any other one is a secret.
void AddCommunity(Call& call, const std::string& community) {
    const bool isSecret = !community.empty() && community != VN_DEFAULT_COMMUNITY;
    call.arguments.push_back(
        {"readCommunity", isSecret ? "VNDISCOVER_COMMUNITY" : community, isSecret});
}

void AddUser(Call& call, const Security& user) {
    const auto password = [&](const char* name, const Secret& secret, const char* variable) {
        call.arguments.push_back({name, secret.IsEmpty() ? "" : variable, !secret.IsEmpty()});
    };
    call.arguments.push_back({"userName", ToUtf8(user.user)});
    call.arguments.push_back({"useAuth", user.useAuth ? "1" : "0"});
    password("authPassword", user.authPassword, "VNDISCOVER_AUTH_PASS");
    call.arguments.push_back({"usePriv", user.usePriv ? "1" : "0"});
    password("privPassword", user.privPassword, "VNDISCOVER_PRIV_PASS");
    call.arguments.push_back({"authProtocol", ToUtf8(user.authLabel)});
    call.arguments.push_back({"privProtocol", ToUtf8(user.privLabel)});
}

}  // namespace

Call CallOf(const SweepStep& step, const std::string& probe) {
    Call call;
    if (step.kind == SweepKind::kWsd) {
        call.name = "DiscoverSoap";
        call.arguments = {{"timeout", std::to_string(kWsdSilenceMs)}, {"probe", probe}};
        return call;
    }
    const std::string oid = OidToText(step.oid);
    call.arguments = {{"timeout", std::to_string(kUnusedSweepTimeoutMs)},
                      {"useIPv6", step.useIPv6 ? "1" : "0"}};
    if (step.kind == SweepKind::kSnmpV1) {
        call.name = "DiscoverDevicesByOID";
        call.arguments.push_back({"oid", oid});
        AddCommunity(call, step.credentials.community);
        return call;
    }
    call.name = "DiscoverSnmpV3";
    if (FormOf(step.kind, step.oid) == AnswerForm::kDocument) {
        call.name = "DiscoverV3DevicesByOIDjson";
        call.arguments.push_back({"oid", oid});
        call.arguments.push_back({"jsonRequest", RequestFor(oid)});
    }
    AddUser(call, *step.credentials.security);
    return call;
}

Call PingOf(const std::string& address) {
    Call call;
    call.name = "VxPing";
    call.arguments = {{"address", address}, {"timeout", std::to_string(kPingTimeoutMs)}};
    return call;
}

Call CallOf(const AskTarget& target, const Oid& oid) {
    Call call;
    const bool isV3 = target.kind == SweepKind::kSnmpV3 && target.credentials.security;
    call.name = isV3 ? "GetNextSnmpRequestV3" : "GetNextSnmpRequestRaw";
    call.arguments = {{"host", target.address},
                      {"oid", OidToText(oid)},
                      {"timeout", std::to_string(kUnusedTimeoutMs)},
                      {"retries", std::to_string(kUnusedRetries)}};
    if (isV3) {
        AddUser(call, *target.credentials.security);
    } else {
        AddCommunity(call, target.credentials.community);
    }
    return call;
}

}  // namespace vndiscover::host
