// SPDX-License-Identifier: Apache-2.0
#pragma once

// Change notifications: an object says before and after one of its properties changes, by the property's name, and
// observers are told on the same thread, in that moment.
//
//     operation->addObserver(u"isFinished", NSKeyValueObservingOptions::prior, [](const NSKeyValueChange& change) {
//         log(change.isPrior ? "will finish" : "did finish");
//     });

#include <ZORPlatform/Export.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>

namespace ZORPlatform {

/// What an observer is told.
struct NSKeyValueChange {
    std::u16string_view key;  ///< The property's name; valid during the call.
    bool isPrior;             ///< True before the change, false after it.
};

enum class NSKeyValueObservingOptions : std::uint8_t {
    none = 0,   ///< One call, after the change.
    prior = 1,  ///< Two calls, before and after.
};

/// A class whose properties can be observed. Thread-safe.
class ZOR_EXPORT NSKeyValueObserving {
public:
    using Observer = std::function<void(const NSKeyValueChange&)>;
    enum class Token : std::uint64_t {};

    NSKeyValueObserving(const NSKeyValueObserving&) = delete;
    NSKeyValueObserving& operator=(const NSKeyValueObserving&) = delete;

    /// `addObserver:forKeyPath:options:context:`
    ///
    /// Has `observer` called at every change of the property `forKeyPath` from now on, on the thread that makes the
    /// change and before that thread goes on. Observers are called in the order in which they were added. No lock is
    /// held: an observer may call anything on the object.
    ///
    /// @return what `removeObserver` takes. An observer that is never removed goes with the object.
    Token addObserver(std::u16string_view forKeyPath, NSKeyValueObservingOptions options, Observer observer);

    /// `removeObserver:forKeyPath:`. Changes that begin after this call are not told to the observer; one that is
    /// being told on another thread may still reach it. An unknown token is ignored.
    void removeObserver(Token token);

    /// `willChangeValueForKey:`. Says that the property is about to change. Each will is followed by a did of the
    /// same key; pairs of different keys may nest.
    void willChangeValueForKey(std::u16string_view key) {
        if (isObserved()) tellObservers({key, true});
    }

    /// `didChangeValueForKey:`. Says that the property has changed. The object itself acts on it after its observers.
    /// The object may be gone when this returns, unless the caller holds it.
    void didChangeValueForKey(std::u16string_view key) {
        if (isObserved()) tellObservers({key, false});
        valueDidChange(key);
    }

protected:
    NSKeyValueObserving() noexcept = default;
    virtual ~NSKeyValueObserving();

    /// Whether anybody may be told of changes. Once true it stays so.
    [[nodiscard]] bool isObserved() const noexcept { return observers_.load(std::memory_order_acquire) != nullptr; }

private:
    struct Observers;

    /// What the object itself does about a change. May let the object be destroyed.
    virtual void valueDidChange(std::u16string_view key);

    void tellObservers(const NSKeyValueChange& change);

    /// Made with the first observer: most objects never have one.
    std::atomic<Observers*> observers_{nullptr};
};

}  // namespace ZORPlatform
