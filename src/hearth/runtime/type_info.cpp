// What a type answers that it does not know.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/type_info.h>

namespace ht {

TTypeInfo::TTypeInfo(TTypeKind kind, String name, std::size_t size, const std::type_info& id)
    : FKind(kind)
    , FName(std::move(name))
    , FSize(size)
    , FId(&id)
{
}

TTypeInfo::~TTypeInfo() = default;

std::int64_t TTypeInfo::Ordinal(const void*) const
{
    throw EInvalidCast();
}

void TTypeInfo::SetOrdinal(void*, std::int64_t) const
{
    throw EInvalidCast();
}

double TTypeInfo::Float(const void*) const
{
    throw EInvalidCast();
}

void TTypeInfo::SetFloat(void*, double) const
{
    throw EInvalidCast();
}

String TTypeInfo::Text(const void*) const
{
    throw EInvalidCast();
}

void TTypeInfo::SetText(void*, const String&) const
{
    throw EInvalidCast();
}

bool TTypeInfo::Contains(const void*, std::int32_t) const
{
    throw EInvalidCast();
}

void TTypeInfo::Include(void*, std::int32_t) const
{
    throw EInvalidCast();
}

TObject* TTypeInfo::Object(const void*) const
{
    throw EInvalidCast();
}

void TTypeInfo::SetObject(void*, TObject*) const
{
    throw EInvalidCast();
}

std::int32_t TTypeInfo::Length(const void*) const
{
    throw EInvalidCast();
}

void TTypeInfo::SetLength(void*, std::int32_t) const
{
    throw EInvalidCast();
}

void* TTypeInfo::At(void*, std::int32_t) const
{
    throw EInvalidCast();
}

}
