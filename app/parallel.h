#pragma once
// Work shared among the machine's cores when there is enough of it.
#include <algorithm>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace quillon {

// How many parts forEachPart makes of count items: one per core (at most 8), but none of fewer
// than worthAThread items.
inline std::size_t partsFor(std::size_t count, std::size_t worthAThread) {
    return std::min<std::size_t>(
        {std::max(1u, std::thread::hardware_concurrency()), 8, count / worthAThread + 1});
}

// Runs work(from, to, part) for the partsFor(count, worthAThread) consecutive parts of [0, count),
// each on its own thread, the first on this one; the first exception of any part is thrown again
// here.
template <class Work> void forEachPart(std::size_t count, std::size_t worthAThread, Work&& work) {
    std::size_t parts = partsFor(count, worthAThread);
    std::exception_ptr failure;
    std::mutex failureGuard;
    auto run = [&](std::size_t part) {
        try {
            work(count * part / parts, count * (part + 1) / parts, part);
        } catch (...) {
            std::lock_guard<std::mutex> lock(failureGuard);
            if (!failure) failure = std::current_exception();
        }
    };
    std::vector<std::thread> helpers;
    for (std::size_t part = 1; part < parts; ++part)
        helpers.emplace_back(run, part);
    run(0);
    for (std::thread& helper : helpers)
        helper.join();
    if (failure) std::rethrow_exception(failure);
}

// Runs work(i) for every i below count, in parts as forEachPart shares them.
template <class Work> void forEachIndex(std::size_t count, Work&& work) {
    forEachPart(count, 2000, [&](std::size_t from, std::size_t to, std::size_t) {
        for (std::size_t i = from; i < to; ++i)
            work(i);
    });
}

} // namespace quillon
