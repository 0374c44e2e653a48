// Handles of objects.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/object.h>

#include <gtest/gtest.h>

#include <memory>

namespace ht {
namespace {

TEST(object, a_handle_dies_with_its_object)
{
    auto object = std::make_unique<TObject>();
    EXPECT_FALSE(object->HasHandle());
    const std::uint32_t handle = object->Handle();
    EXPECT_EQ(object->Handle(), handle);
    const TObject copy = *object;
    EXPECT_FALSE(copy.HasHandle());
    EXPECT_EQ(TObject::FromHandle(handle), object.get());
    object.reset();
    EXPECT_EQ(TObject::FromHandle(handle), nullptr);
    EXPECT_NE(TObject().Handle(), handle);
    EXPECT_EQ(TObject::FromHandle(0), nullptr);
}

}
}
