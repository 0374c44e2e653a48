// Describing a class or record to the reflection: templates that read member pointers. Part of reflection.h.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/reflection.h>

#include <exception>
#include <type_traits>

namespace ht {

/// See TRttiContext::Register. Getters are const operations without arguments, setters take one; both may be
/// inherited. An object that a getter returns by reference counts as an object without a setter, and so does
/// a field that owns its object.
template <class T> class TRttiBuilder {
public:
    TRttiBuilder()
        : FType(std::make_unique<TRttiType>(Handle(), Creator()))
    {
    }
    TRttiBuilder(TRttiBuilder&&) noexcept = default;
    ~TRttiBuilder() noexcept(false)
    {
        // A line that threw has left the description half done, and a type stays as it is for ever.
        if (FType && std::uncaught_exceptions() == FExceptions)
            TRttiContext::Add(std::move(FType));
    }

    template <class R, class C>
    TRttiBuilder&& Property(
        std::u16string_view name, R (C::*get)() const, TMemberVisibility visibility = mvPublished)
    {
        return AddProperty(name, TypeOfResult<R>(), Getter(get, TypeOfResult<R>()), nullptr, visibility);
    }
    template <class R, class C, class S, class D, class A>
    TRttiBuilder&& Property(std::u16string_view name, R (C::*get)() const, S (D::*set)(A),
        TMemberVisibility visibility = mvPublished)
    {
        const TTypeInfo& type = TypeOfResult<R>();
        return AddProperty(name, type, Getter(get, type), Setter<TValueOf<R>>(set), visibility);
    }
    /// A TDateTime, told apart from other numbers.
    template <class C, class S, class D, class A>
    TRttiBuilder&& DateProperty(std::u16string_view name, double (C::*get)() const, S (D::*set)(A),
        TMemberVisibility visibility = mvPublished)
    {
        const TTypeInfo& type = TypeInfoOf<TDateTimeType>();
        return AddProperty(name, type, Getter(get, type), Setter<double>(set), visibility);
    }

    template <class V, class C>
    TRttiBuilder&& Field(std::u16string_view name, V C::*field, TMemberVisibility visibility = mvPublic)
    {
        return AddField(name, TypeOfResult<V>(), field, visibility);
    }
    template <class C>
    TRttiBuilder&& DateField(
        std::u16string_view name, double C::*field, TMemberVisibility visibility = mvPublic)
    {
        return AddField(name, TypeInfoOf<TDateTimeType>(), field, visibility);
    }

private:
    static constexpr bool kIsClass = std::is_base_of_v<TObject, T>;

    static const TTypeInfo& Handle()
    {
        if constexpr (kIsClass)
            return TypeInfoOf<T*>();
        else
            return TypeInfoOf<T>();
    }
    static auto Creator() -> std::unique_ptr<TObject> (*)()
    {
        if constexpr (kIsClass && std::is_default_constructible_v<T>)
            return []() -> std::unique_ptr<TObject> { return std::make_unique<T>(); };
        else
            return nullptr;
    }

    /// Objects travel as TObject, records as they are.
    static T& Instance(void* instance)
    {
        if constexpr (kIsClass)
            return static_cast<T&>(*static_cast<TObject*>(instance));
        else
            return *static_cast<T*>(instance);
    }
    static const T& Instance(const void* instance) { return Instance(const_cast<void*>(instance)); }

    template <class V> struct TOwned : std::false_type {
    };
    template <class V> struct TOwned<std::unique_ptr<V>> : std::true_type {
    };

    /// The value of a result or field: objects as pointers.
    template <class V> static auto ValueOf(const V& value)
    {
        if constexpr (TOwned<V>::value)
            return value.get();
        else if constexpr (std::is_base_of_v<TObject, V>)
            return const_cast<V*>(&value);
        else if constexpr (std::is_pointer_v<V>)
            return const_cast<std::remove_const_t<std::remove_pointer_t<V>>*>(value);
        else
            return value;
    }
    template <class R> using TValueOf = decltype(ValueOf(std::declval<const std::remove_cvref_t<R>&>()));
    template <class R> static const TTypeInfo& TypeOfResult() { return TypeInfoOf<TValueOf<R>>(); }

    template <class R, class C> static TRttiMember::TGetter Getter(R (C::*get)() const, const TTypeInfo& type)
    {
        return [get, &type](const void* instance) {
            decltype(auto) result = (Instance(instance).*get)();
            const auto value = ValueOf(result);
            return TValue::OfType(type, &value);
        };
    }
    /// The argument is what the getter gives, a V; the setter may take anything that this converts to.
    template <class V, class S, class D, class A> static TRttiMember::TSetter Setter(S (D::*set)(A))
    {
        return [set](void* instance, const TValue& value) {
            (Instance(instance).*set)(*static_cast<const V*>(value.Data()));
        };
    }

    template <class V, class C>
    TRttiBuilder&& AddField(
        std::u16string_view name, const TTypeInfo& type, V C::*field, TMemberVisibility visibility)
    {
        const auto get = [field, &type](const void* instance) {
            const auto value = ValueOf(Instance(instance).*field);
            return TValue::OfType(type, &value);
        };
        TRttiMember::TSetter set;
        if constexpr (!TOwned<V>::value && !std::is_base_of_v<TObject, V> && !std::is_const_v<V>)
            set = [field](void* instance, const TValue& value) {
                Instance(instance).*field = *static_cast<const V*>(value.Data());
            };
        FType->FFields.emplace_back(String(name), type, visibility, get, std::move(set));
        return std::move(*this);
    }
    TRttiBuilder&& AddProperty(std::u16string_view name, const TTypeInfo& type, TRttiMember::TGetter get,
        TRttiMember::TSetter set, TMemberVisibility visibility)
    {
        FType->FProperties.emplace_back(String(name), type, visibility, std::move(get), std::move(set));
        return std::move(*this);
    }

    std::unique_ptr<TRttiType> FType;
    int FExceptions = std::uncaught_exceptions();
};

template <class T> TRttiBuilder<T> TRttiContext::Register()
{
    return TRttiBuilder<T>();
}

}
