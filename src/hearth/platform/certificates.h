// Client certificates as the store of the host holds them.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/object.h>
#include <hearth/runtime/text.h>

namespace ht {

/// A certificate with its key, in a file of its own.
class HT_API THtClientCertificate : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"THtClientCertificate", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }
    ~THtClientCertificate() override;

    String FileName;
    String Password; // of the key; empty when it has none
    bool IsPkcs12 = false; // else PEM
    String Subject; // of the leaf, "CN = ..., O = ..."
    String Issuer;
};

}
