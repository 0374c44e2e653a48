// Filling objects and records from trees: what XML and JSON have in common.
// SPDX-License-Identifier: MIT
#pragma once

#include "object_members_p.h"

#include <hearth/xml/xml_node.h>

#include <memory>
#include <vector>

namespace ht {

/// Fills what is there and creates what is not. A format tells how its nodes hold members and plain values.
///
/// Whatever is created belongs to the loader until it hangs in an object that the caller knows; so nothing
/// is lost when reading fails halfway.
class TObjectLoader {
public:
    TObjectLoader() = default;
    TObjectLoader(const TObjectLoader&) = delete;
    TObjectLoader& operator=(const TObjectLoader&) = delete;
    virtual ~TObjectLoader() = default;

    void Fill(TObject& object, const THtXMLNode& node);
    std::unique_ptr<TObject> Create(const TRttiType& type, const THtXMLNode& node);
    /// Objects in the value belong to the caller. Throws before anything is his.
    TValue Read(const TTypeInfo& type, const THtXMLNode& node);
    /// The same for a record that is there; fields that the node lacks stay.
    void Update(TValue& record, const THtXMLNode& node);

protected:
    /// An object, or a record in a value that is to be stored somewhere.
    struct TInstance {
        TObject* Object = nullptr;
        TValue* Record = nullptr;

        TValue Get(const TRttiMember& member) const
        {
            return Object ? member.GetValue(Object) : member.GetValue(*Record);
        }
        void Set(const TRttiMember& member, const TValue& value) const
        {
            Object ? member.SetValue(Object, value) : member.SetValue(*Record, value);
        }
    };

    /// Calls ReadMember or Store for each member that the node holds.
    virtual void ReadMembers(
        const TInstance& instance, const std::vector<TObjectMember>& members, const THtXMLNode& node) = 0;
    /// A value that is no object, record or array.
    virtual TValue ReadPlain(const TTypeInfo& type, const THtXMLNode& node) = 0;
    /// Raises for a node that does not hold what `kind` asks for: members for tkClass and tkRecord, else
    /// elements.
    virtual void CheckShape(TTypeKind kind, const THtXMLNode& node) = 0;
    virtual bool IsNull(const THtXMLNode& node) const = 0;
    /// Raises with FPath and what is wrong there.
    [[noreturn]] virtual void Raise(std::u16string_view what) const = 0;

    void ReadMember(const TInstance& instance, const TObjectMember& member, const THtXMLNode& node);
    /// Where the loader is: the names of members with dots between.
    String PathText() const;
    /// Calls `work` with a name at the end of the path.
    template <class Work> void Within(const String& name, Work work)
    {
        Enter(name);
        work();
        FPath.pop_back();
    }

private:
    void ReadObjectMember(const TInstance& instance, const TObjectMember& member, const THtXMLNode& node);
    TValue ReadValue(const TTypeInfo& type, const THtXMLNode& node);
    TValue ReadObject(const TTypeInfo& type, const THtXMLNode& node);
    TValue ReadArray(const TTypeInfo& type, const THtXMLNode& node);
    void FillRecord(TValue& record, const THtXMLNode& node);
    void FillStrings(TObject& object, const THtXMLNode& node);
    void ReleaseFrom(std::size_t mark) noexcept;
    void Enter(const String& name);
    const TRttiType& Registered(const TRttiType* type, std::u16string_view name) const;

    TObjectMembers FMembers;
    std::vector<String> FPath;
    std::vector<std::unique_ptr<TObject>> FCreated; // not stored anywhere yet
};

}
