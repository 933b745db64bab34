// SPDX-License-Identifier: Apache-2.0
#pragma once

// Random graphs of futures, built and resolved by a script of bytes. The log of callbacks tells whether two
// implementations run them alike.

#include <ZORFoundation/Concurrency/FutureValue.h>
#include <ZORFoundation/Concurrency/Unit.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace support {

/// What ran, in order: which callback, and with which value or error.
using FutureLog = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

/// Runs a script over one implementation.
///
/// @tparam Future, Promise  the library's templates, or those of the literal rules
template <template <class> class Future, template <class> class Promise>
class FutureScript {
public:
    using Number = std::uint32_t;
    using Error = ZORFoundation::Error;
    using Unit = ZORFoundation::Unit;

    explicit FutureScript(std::span<const std::uint8_t> script) : script_(script) { addPromise(); }

    const FutureLog& run() {
        while (!script_.empty()) step();
        return log_;
    }

private:
    // Enough for every shape; a script of any length stays linear.
    static constexpr std::size_t kMostFutures = 200;

    void step() {
        const std::uint8_t operation = next();
        if (futures_.size() >= kMostFutures && operation % 16 < 10) return;
        switch (operation % 16) {
            case 0:
                return addPromise();
            case 1:
            case 2:
                return addThen();
            case 3: {
                const Number id = newId();
                return add(future().map([this, id](Number value) { return note(id, value) + 1; }));
            }
            case 4: {
                const Number id = newId();
                const Future<Number> first = future();
                return add(first.and_(future()).map([this, id](const std::pair<Number, Number>& pair) {
                    return note(id, pair.first * 3 + pair.second);
                }));
            }
            case 5:
                return addReduction();
            case 6:
                return addUnits();
            case 7:
                return add(next() % 2 == 0 ? Future<Number>::succeeded(next())
                                           : Future<Number>::failed(Error(newId())));
            case 8:
            case 9:
                return observe();
            case 10:
            case 11:
                return observeAndAct();
            case 12:
                promises_.erase(promises_.begin() + static_cast<std::ptrdiff_t>(next() % promises_.size()));
                if (promises_.empty()) addPromise();
                return;
            case 13:
                if (futures_.size() > 1) {
                    futures_.erase(futures_.begin() + static_cast<std::ptrdiff_t>(next() % futures_.size()));
                }
                return;
            default:
                return resolve(next(), next());
        }
    }

    void addPromise() {
        promises_.emplace_back();
        add(promises_.back().futureResult());
    }

    /// A link that returns a resolved future, a failed one, or one that was there before.
    void addThen() {
        const Number id = newId();
        const std::uint8_t kind = next();
        const Future<Number> source = future();
        const Future<Number> returned = future();
        add(source.then([this, id, kind, returned](Number value) {
            note(id, value);
            switch (kind % 4) {
                case 0:
                    return Future<Number>::succeeded(value + 1);
                case 1:
                    return Future<Number>::failed(Error(id));
                default:
                    return returned;
            }
        }));
    }

    void addReduction() {
        std::vector<Future<Number>> elements;
        for (std::size_t count = next() % 5; count > 0; --count) elements.push_back(future());
        const Number id = newId();
        add(Future<Number>::reduce(id, elements,
                                   [this, id](Number& sum, Number value) { sum = note(id, sum * 5 + value); }));
    }

    /// The unit type, whose `map` gives back the same future.
    void addUnits() {
        const Number id = newId();
        add(future()
                .map([](Number) { return Unit(); })
                .map([this, id](Unit) {
                    note(id, 1);
                    return Unit();
                })
                .map([this, id](Unit) { return note(id, 2); }));
    }

    void observe() {
        const Number id = newId();
        const std::uint8_t kind = next();
        observe(future(), id, kind);
    }
    void observe(const Future<Number>& observed, Number id, std::uint8_t kind) {
        switch (kind % 4) {
            case 0:
                return observed.whenSuccess([this, id](Number value) { note(id, value); });
            case 1:
                return observed.whenFailure([this, id](const Error& error) { noteError(id, error); });
            case 2:
                return observed.whenResult([this, id](const ZORFoundation::FutureValue<Number>& outcome) {
                    outcome.match([&](Number value) { note(id, value); },
                                  [&](const Error& error) { noteError(id, error); });
                });
            default:
                return observed.whenComplete([this, id] { note(id, 0); });
        }
    }

    /// A callback that resolves a promise or registers on a future in its turn.
    void observeAndAct() {
        const Number id = newId();
        const std::uint8_t kind = next();
        const std::uint8_t which = next();
        future().whenComplete([this, id, kind, which] {
            note(id, kind);
            if (kind % 2 == 0) {
                observe(futures_[which % futures_.size()], id + 1'000'000, kind / 2);
            } else {
                resolve(which, kind / 2);
            }
            note(id, 7);
        });
    }

    void resolve(std::uint8_t which, std::uint8_t value) {
        // A copy: what runs may drop the promise.
        const Promise<Number> promise = promises_[which % promises_.size()];
        if (value % 5 == 0) {
            promise.fail(Error(Number{value}));
        } else {
            promise.succeed(value);
        }
    }

    void add(Future<Number> future) { futures_.push_back(std::move(future)); }
    Future<Number> future() { return futures_[next() % futures_.size()]; }
    Number newId() { return ++lastId_; }
    Number note(Number id, Number value) {
        log_.emplace_back(id, value);
        return value;
    }
    void noteError(Number id, const Error& error) {
        const Number* const value = error.as<Number>();
        note(id, value == nullptr ? 0 : *value + 500);
    }

    std::uint8_t next() {
        if (script_.empty()) return 0;
        const std::uint8_t byte = script_.front();
        script_ = script_.subspan(1);
        return byte;
    }

    std::span<const std::uint8_t> script_;
    std::vector<Promise<Number>> promises_;
    std::vector<Future<Number>> futures_;
    FutureLog log_;
    Number lastId_ = 0;
};

}  // namespace support
