// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/NSKeyValueObserving.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ZORPlatform {

struct NSKeyValueObserving::Observers {
    struct Entry {
        Token token;
        std::u16string key;
        NSKeyValueObservingOptions options;
        Observer observer;
    };

    std::mutex mutex;
    std::uint64_t lastToken = 0;
    std::vector<std::shared_ptr<const Entry>> entries;
};

NSKeyValueObserving::~NSKeyValueObserving() { delete observers_.load(std::memory_order_acquire); }

NSKeyValueObserving::Token NSKeyValueObserving::addObserver(std::u16string_view forKeyPath,
                                                            NSKeyValueObservingOptions options, Observer observer) {
    Observers* observers = observers_.load(std::memory_order_acquire);
    if (observers == nullptr) {
        auto made = std::make_unique<Observers>();
        if (observers_.compare_exchange_strong(observers, made.get(), std::memory_order_acq_rel)) {
            observers = made.release();
        }
    }
    const std::scoped_lock lock(observers->mutex);
    const Token token{++observers->lastToken};
    observers->entries.push_back(std::make_shared<const Observers::Entry>(
        Observers::Entry{token, std::u16string(forKeyPath), options, std::move(observer)}));
    return token;
}

void NSKeyValueObserving::removeObserver(Token token) {
    Observers* observers = observers_.load(std::memory_order_acquire);
    if (observers == nullptr) return;
    std::shared_ptr<const Observers::Entry> removed;  // Destroyed without the lock: it holds the caller's code.
    const std::scoped_lock lock(observers->mutex);
    for (auto entry = observers->entries.begin(); entry != observers->entries.end(); ++entry) {
        if ((*entry)->token != token) continue;
        removed = std::move(*entry);
        observers->entries.erase(entry);
        return;
    }
}

void NSKeyValueObserving::valueDidChange(std::u16string_view /*key*/) {}

void NSKeyValueObserving::tellObservers(const NSKeyValueChange& change) {
    Observers* observers = observers_.load(std::memory_order_acquire);
    std::vector<std::shared_ptr<const Observers::Entry>> told;
    {
        const std::scoped_lock lock(observers->mutex);
        for (const auto& entry : observers->entries) {
            const bool wants = !change.isPrior || entry->options == NSKeyValueObservingOptions::prior;
            if (wants && entry->key == change.key) told.push_back(entry);
        }
    }
    for (const auto& entry : told) entry->observer(change);
}

}  // namespace ZORPlatform
