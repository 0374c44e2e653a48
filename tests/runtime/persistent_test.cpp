// Assigning between classes.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/exceptions.h>
#include <hearth/runtime/persistent.h>

#include "messages.h"

#include <gtest/gtest.h>

namespace ht {
namespace {

TEST(persistent, classes_that_do_not_know_each_other)
{
    TPersistent a;
    const TPersistent b;
    EXPECT_EQ(
        MessageOf<EConvertError>([&] { a.Assign(&b); }), u"Cannot assign a TPersistent to a TPersistent");
    EXPECT_EQ(MessageOf<EConvertError>([&] { a.Assign(nullptr); }), u"Cannot assign a nil to a TPersistent");
}

}
}
