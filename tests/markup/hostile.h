// What tests of hostile inputs measure with: small stacks, time, and growth.
// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>

namespace hostile {

inline constexpr bool kSanitized = HEARTH_TEST_SANITIZED;

/// Large inputs shrink where every access is checked.
inline constexpr std::size_t kScale = kSanitized ? 10 : 1;

/// Runs the body on a stack of 1 MB; sanitizers need more than they leave, so there it runs as it is.
inline void OnSmallStack(const std::function<void()>& body)
{
    if (kSanitized)
        return body();
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{1} << 20U), 0);
    pthread_t thread{};
    const auto run = [](void* work) -> void* {
        (*static_cast<const std::function<void()>*>(work))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&body)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

inline double Seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Four-fold input costs about four times as much, sixteen times where the cost is quadratic. Of three tries
/// the shortest times count: a busy machine makes a time longer, nothing makes it shorter.
inline void ExpectLinear(std::size_t size, const std::function<void(std::size_t)>& work)
{
    constexpr double kNoise = 0.05;
    work(size / 4); // warms caches and memory
    double once = Seconds([&] { work(size); });
    double fourTimes = Seconds([&] { work(size * 4); });
    for (int i = 0; i < 2; ++i) {
        once = std::min(once, Seconds([&] { work(size); }));
        fourTimes = std::min(fourTimes, Seconds([&] { work(size * 4); }));
    }
    EXPECT_LT(fourTimes, once * 10 + kNoise) << "once: " << once;
}

}
