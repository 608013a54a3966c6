#include "model/scan/scan.h"

#include "values/module_types.h"

namespace vndiscover::host {

const Oid& DefaultDiscoveryOid() {
    static const Oid oid = *ParseOid(kDefaultDiscoveryOid);
    return oid;
}

AnswerForm FormOf(SweepKind kind, const Oid& oid) {
    if (kind == SweepKind::kWsd) return AnswerForm::kReply;
    // SNMPv3 sweeps accept another OID only in a JSON request.
    const bool isDocument = kind == SweepKind::kSnmpV3 && oid != DefaultDiscoveryOid();
    return isDocument ? AnswerForm::kDocument : AnswerForm::kValue;
}

}  // namespace vndiscover::host
