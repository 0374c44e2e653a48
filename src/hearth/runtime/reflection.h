// What a program may know about the members of classes and records at run time.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/value.h>

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace ht {

class TRttiType;

/// Who a member is meant for. Writers of objects write what is published, and of records the fields.
enum TMemberVisibility : std::uint8_t { mvPrivate, mvProtected, mvPublic, mvPublished };

/// A named value of an object or record.
class HT_API TRttiMember {
public:
    /// Read and write a value. `instance` is the TObject, or the record itself.
    using TGetter = std::function<TValue(const void* instance)>;
    using TSetter = std::function<void(void* instance, const TValue& value)>;

    TRttiMember(
        const String& name, const TTypeInfo& type, TMemberVisibility visibility, TGetter get, TSetter set);

    const String& Name() const noexcept { return FName; }
    TMemberVisibility Visibility() const noexcept { return FVisibility; }
    /// The class or record that declares it.
    const TRttiType* Parent() const noexcept { return FParent; }
    bool IsReadable() const noexcept { return FGet != nullptr; }
    bool IsWritable() const noexcept { return FSet != nullptr; }
    /// Throws EInvalidCast for an object of another class, and for a member that cannot be read.
    TValue GetValue(const TObject* object) const;
    /// Takes what TValue::Cast turns into the type of the member. Throws EInvalidCast for all else, for an
    /// object of another class, and for a member that cannot be written.
    void SetValue(TObject* object, const TValue& value) const;
    /// The same for the fields of a record in a value.
    TValue GetValue(const TValue& record) const;
    void SetValue(TValue& record, const TValue& value) const;

protected:
    const TTypeInfo& Type() const noexcept { return *FType; }

private:
    friend class TRttiType;

    const void* Checked(const TObject* object) const;
    const void* Checked(const TValue& record) const;
    TValue Get(const void* instance) const;
    void Set(void* instance, const TValue& value) const;

    String FName;
    const TTypeInfo* FType;
    TMemberVisibility FVisibility;
    TGetter FGet;
    TSetter FSet;
    const TRttiType* FParent = nullptr;
};

/// A value behind two operations.
class HT_API TRttiProperty : public TRttiMember {
public:
    using TRttiMember::TRttiMember;
    const TTypeInfo& PropertyType() const noexcept { return Type(); }
};

/// A value in memory.
class HT_API TRttiField : public TRttiMember {
public:
    using TRttiMember::TRttiMember;
    const TTypeInfo& FieldType() const noexcept { return Type(); }
};

/// A class or record with the members that were registered. Lifetime: for ever. Members of a class come in
/// front of those of its ancestors, in the order of their registration; names are found whatever their
/// ASCII case. Of types with the same name the first that was registered is found by it.
class HT_API TRttiType {
public:
    TRttiType(const TTypeInfo& handle, std::unique_ptr<TObject> (*create)());

    const String& Name() const noexcept { return FHandle->Name(); }
    /// Of a class that of pointers to its objects.
    const TTypeInfo& Handle() const noexcept { return *FHandle; }
    TTypeKind TypeKind() const noexcept { return FHandle->Kind(); }
    /// The class; null for a record.
    const TClassInfo* Class() const { return FHandle->ClassInfo(); }
    /// The nearest ancestor that is registered, or null.
    const TRttiType* BaseType() const;
    /// A new object; null for a record and for a class that is not made from nothing.
    std::unique_ptr<TObject> CreateInstance() const { return FCreate ? FCreate() : nullptr; }

    std::vector<const TRttiProperty*> GetProperties() const;
    std::vector<const TRttiField*> GetFields() const;
    std::span<const TRttiProperty> GetDeclaredProperties() const noexcept { return FProperties; }
    std::span<const TRttiField> GetDeclaredFields() const noexcept { return FFields; }
    /// Also of ancestors; null for a miss.
    const TRttiProperty* GetProperty(std::u16string_view name) const;
    const TRttiField* GetField(std::u16string_view name) const;

private:
    friend class TRttiContext;
    template <class T> friend class TRttiBuilder;

    void Adopt() noexcept;

    const TTypeInfo* FHandle;
    std::unique_ptr<TObject> (*FCreate)();
    std::vector<TRttiProperty> FProperties;
    std::vector<TRttiField> FFields;
};

template <class T> class TRttiBuilder;

/// The registered types. All operations may be called by several threads at once: a lock in the source guards
/// the table, and a type never changes once it is in it.
class HT_API TRttiContext {
public:
    /// Begins to describe a class (a TObject descendant with its own kClassInfo) or a record; the type is
    /// known when the builder goes, at the end of the statement. A type that is known already stays as it is.
    ///   TRttiContext::Register<TPerson>()
    ///       .Property(u"Name", &TPerson::Name, &TPerson::SetName)
    ///       .DateProperty(u"Born", &TPerson::Born, &TPerson::SetBorn)
    ///       .Field(u"Age", &TPerson::Age);
    template <class T> static TRttiBuilder<T> Register();

    /// Null for what is not registered.
    static const TRttiType* GetType(const TTypeInfo& type);
    static const TRttiType* GetType(const TClassInfo& info);
    static const TRttiType* GetType(std::u16string_view name);
    /// The type of the object, or of its nearest ancestor that is registered.
    static const TRttiType* TypeOf(const TObject& object);

    static void Add(std::unique_ptr<TRttiType> type);
};

}

#include <hearth/runtime/reflection_builder.h>
