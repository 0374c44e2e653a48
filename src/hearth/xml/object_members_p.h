// Which members of classes and records are written and read, and the texts of numbers.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/reflection.h>

#include <string_view>
#include <unordered_map>
#include <vector>

namespace ht {

struct TObjectMember {
    const TRttiMember* Member;
    const TTypeInfo* Type;
};

/// The members of types, gathered once a type: of a class its published properties and fields, the own ones
/// first and without those of ancestors that have the same name, of a record its fields.
class TObjectMembers {
public:
    const std::vector<TObjectMember>& Of(const TRttiType& type);
    /// Null for a miss. ASCII case does not count.
    static const TObjectMember* Find(const std::vector<TObjectMember>& members, std::u16string_view name);

private:
    std::unordered_map<const TRttiType*, std::vector<TObjectMember>> FMembers;
};

/// Numbers as texts that TValue::FromText reads back as they were; all else as TValue::ToString.
String ExactText(const TValue& value);

/// What may nest, of what a limit allows: each level costs stack.
constexpr std::int32_t kMaxObjectDepth = 1024;
inline bool IsTooDeep(std::int32_t depth, std::int32_t limit) noexcept
{
    return depth >= kMaxObjectDepth || (limit != 0 && depth >= limit);
}

}
