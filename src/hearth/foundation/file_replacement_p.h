// A new file that takes the place of another one as a whole.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/text.h>

#include <string>

namespace ht {

/// An empty file beside another one, which it replaces once it is complete, and with which it shares its
/// mode; it is removed at the end of the scope otherwise. Throws EFCreateError.
class TFileReplacement {
public:
    explicit TFileReplacement(const String& fileName);
    TFileReplacement(const TFileReplacement&) = delete;
    TFileReplacement& operator=(const TFileReplacement&) = delete;
    ~TFileReplacement();

    /// The file to write.
    String Beside() const { return String::FromUtf8(FBeside); }
    /// Call when it was written and closed. Throws EFCreateError.
    void TakePlace();

private:
    void MakeBeside();

    String FName;
    std::string FBeside; // empty when there is nothing to remove
};

}
