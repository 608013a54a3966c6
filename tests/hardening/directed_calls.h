// Every directed request, with buffers of exactly the documented sizes.
#pragma once

#include <gtest/gtest.h>

#include "exports/support/module.h"
#include "exports/support/snmp_datagrams.h"
#include "hardening/edge_buffer.h"

namespace vndiscover {

// Calls one device in turn by all ways and checks what is true of every result, whatever came back.
class DirectedCalls {
  public:
    static constexpr int kKindsV1 = 5;
    static constexpr int kKindsV3 = 3;

    DirectedCalls(const Module& module, const char* host) : module_(module), host_(host) {}

    void CallV1(int kind) {
        uint32_t type = 0;
        switch (kind) {
            case 0:
                CheckText(module_.GetSnmpInformation(host_, information_.Fresh(), nullptr, nullptr),
                          information_);
                break;
            case 1:
                CheckText(module_.GetSnmpRequest(host_, kDefaultOid, value_.Fresh(), 256,
                                                 VN_TYPE_INTEGER, 0, 0, nullptr, nullptr),
                          value_);
                break;
            case 2:
                CheckLength(module_.GetSnmpRequestRaw(host_, kDefaultOid, value_.Fresh<uint8_t>(),
                                                      256, &type, 0, 0, nullptr, nullptr));
                EXPECT_LE(type, 255u);
                break;
            case 3: {
                auto* record = record_.Fresh<VnResponseRecord>();
                CheckLength(module_.GetNextSnmpRequestRaw(host_, kDefaultOid, record, 0, 0, nullptr,
                                                          nullptr));
                CheckRecord(*record);
                break;
            }
            default:
                type = VN_TYPE_OCTET_STRING;
                CheckLength(module_.SetSnmpRequestRaw(host_, kDefaultOid, set_.Fresh<uint8_t>(),
                                                      100, &type, 0, 0, nullptr, nullptr));
        }
    }

    void CallV3(int kind) {
        uint32_t type = 0;
        if (kind == 0) {
            auto* record = record_.Fresh<VnResponseRecord>();
            module_.GetNextSnmpRequestV3(host_, kDefaultOid, record, 0, 0, L"user", 0, nullptr, 0,
                                         nullptr, nullptr, nullptr);
            CheckRecord(*record);
            return;
        }
        const BYTE secure = kind == 2 ? 1 : 0;
        const int32_t length = module_.GetSnmpRequestV3(
            host_, kDefaultOid, value_.Fresh(), 256, &type, 0, 0, L"user", secure, L"authpass1",
            secure, L"privpass1", VN_AUTH_SHA1, VN_PRIV_AES);
        EXPECT_GE(length, -1);
        EXPECT_TRUE(length <= 0 || value_.IsText());
    }

    // The device answers as it should: nothing that came before has done harm.
    void ExpectGood(const std::string& text) {
        EXPECT_EQ(static_cast<int32_t>(text.size()),
                  module_.GetSnmpInformation(host_, information_.Fresh(), nullptr, nullptr));
        EXPECT_EQ(text, information_.Text());
    }

  private:
    static void CheckLength(int32_t length) {
        EXPECT_GE(length, -1);
        EXPECT_LE(length, 255);
    }
    static void CheckText(int32_t length, const EdgeBuffer& buffer) {
        CheckLength(length);
        EXPECT_TRUE(length <= 0 || buffer.IsText());
    }
    static void CheckRecord(const VnResponseRecord& record) {
        for (const char byte : record.reserved) EXPECT_EQ('u', byte);
        if (record.valueType == 0x7575) return;  // left alone
        EXPECT_LE(record.valueLength, 255);
        EXPECT_LT(strnlen(record.address, sizeof record.address), sizeof record.address);
        EXPECT_TRUE(record.oidLength <= 128 || record.oidLength == 0x7575);
    }

    const Module& module_;
    const char* host_;
    EdgeBuffer information_{VN_INFORMATION_SIZE};
    EdgeBuffer value_{VN_REQUEST_VALUE_SIZE};
    EdgeBuffer record_{sizeof(VnResponseRecord)};
    EdgeBuffer set_{100};
};

}  // namespace vndiscover
