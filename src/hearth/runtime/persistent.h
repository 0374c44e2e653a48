// The root of classes that can take over the state of another object.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/object.h>

namespace ht {

/// An object that can assign its state to another, or take another's.
class HT_API TPersistent : public TObject {
public:
    static constexpr TClassInfo kClassInfo{u"TPersistent", &TObject::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// Takes the state of `source`; a class that does not know the source's class asks the source. Throws
    /// EConvertError when neither knows the other.
    virtual void Assign(const TPersistent* source)
    {
        if (!source)
            RaiseAssignError(u"nil");
        source->AssignTo(*this);
    }

protected:
    /// Gives this object's state to `target`; overridden where the source knows how.
    virtual void AssignTo(TPersistent& target) const { target.RaiseAssignError(ClassInfo().Name); }

private:
    [[noreturn]] void RaiseAssignError(std::u16string_view source) const
    {
        throw EConvertError(Concat({u"Cannot assign a ", source, u" to a ", ClassInfo().Name}));
    }
};

}
