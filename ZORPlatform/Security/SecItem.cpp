// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/SecItem.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/HostEnvironmentInternal.h>
#include <ZORPlatform/Foundation/NSFileManager.h>
#include <ZORPlatform/Security/ItemStoreInternal.h>
#include <ZORPlatform/Security/SQLiteItemStorageInternal.h>
#include <ZORPlatform/Security/SecItemStore.h>

#include <pthread.h>

#include <mutex>
#include <new>
#include <utility>

namespace ZORPlatform {
namespace {

namespace fs = std::filesystem;

/// The store that the process has open, if any.
class OpenStore {
public:
    // Never destroyed: threads of the application may still ask while the process exits.
    static OpenStore& instance() {
        static OpenStore& instance = *new OpenStore;
        return instance;
    }

    template <class Work>
    OSStatus use(const Work& work) {
        // A key source that comes back here would wait for itself.
        if (isInside) return errSecNotAvailable;
        const Turn turn(mutex_);
        try {
            OSStatus status = open();
            if (status == errSecSuccess) status = work(*store_);
            // What was wrong with the file may be over next time: it is opened anew.
            if (status == errSecIO) store_.reset();
            return status;
        } catch (const std::bad_alloc&) {
            return errSecAllocate;
        }
    }

    SecItemStoreReport examine() {
        SecItemStoreReport report;
        report.path = HostEnvironment::itemStorePath();
        {
            const Turn turn(mutex_);
            report.keySource = source_->name(report.path);
            report.keyFile = source_->file(report.path);
        }
        report.exists = NSFileManager::fileExistsAtPath(report.path);
        if (!report.exists) return report;
        report.status = use([&report](ItemStore& store) { return store.examine(report); });
        if (report.status == errSecSuccess)
            report.schemaVersion = static_cast<int>(SQLiteItemStorage::migrations().size());
        return report;
    }

    void setKeySource(std::shared_ptr<const SecItemKeySource> source) {
        const Turn turn(mutex_);
        store_.reset();
        source_ = source ? std::move(source) : std::make_shared<const SecItemKeyFile>();
    }

    void close() {
        const Turn turn(mutex_);
        store_.reset();
    }

private:
    /// The mutex held, and the thread marked as the one that holds it.
    class Turn {
    public:
        explicit Turn(std::mutex& mutex) : lock_(mutex) { isInside = true; }
        ~Turn() { isInside = false; }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        std::scoped_lock<std::mutex> lock_;
    };

    // SQLite cannot be taken across a fork, not even to be closed behind it, and what it knows of a file's locks would
    // be wrong in the child. So there is nothing open while the process forks. A key source that forks while the store
    // is being opened is left to its own: nothing is kept in the child that it does not use.
    OpenStore() {
        const auto afterFork = [] {
            if (!isInside) instance().mutex_.unlock();
        };
        ::pthread_atfork(
            [] {
                if (isInside) return;
                instance().mutex_.lock();
                instance().store_.reset();
            },
            afterFork, afterFork);
    }

    OSStatus open() {
        if (store_ && isItemStorePath(path_) && store_->storage().isCurrent()) return errSecSuccess;
        store_.reset();
        path_ = HostEnvironment::itemStorePath();
        std::unique_ptr<SQLiteItemStorage> storage;
        const OSStatus status = SQLiteItemStorage::open(path_, storage);
        return status == errSecSuccess ? ItemStore::open(std::move(storage), *source_, path_, store_) : status;
    }

    static inline thread_local bool isInside = false;

    std::mutex mutex_;
    std::shared_ptr<const SecItemKeySource> source_ = std::make_shared<const SecItemKeyFile>();
    std::optional<ItemStore> store_;
    fs::path path_;
};

}  // namespace

OSStatus SecItemAdd(const SecItemDictionary& attributes, SecItemResult* result) {
    return OpenStore::instance().use([&](ItemStore& store) { return store.add(attributes, result); });
}

OSStatus SecItemCopyMatching(const SecItemDictionary& query, SecItemResult* result) {
    return OpenStore::instance().use([&](ItemStore& store) { return store.copyMatching(query, result); });
}

OSStatus SecItemUpdate(const SecItemDictionary& query, const SecItemDictionary& attributesToUpdate) {
    return OpenStore::instance().use([&](ItemStore& store) { return store.update(query, attributesToUpdate); });
}

OSStatus SecItemDelete(const SecItemDictionary& query) {
    return OpenStore::instance().use([&](ItemStore& store) { return store.remove(query); });
}

void SecItemStore::setKeySource(std::shared_ptr<const SecItemKeySource> source) {
    OpenStore::instance().setKeySource(std::move(source));
}

SecItemStoreReport SecItemStore::examine() { return OpenStore::instance().examine(); }

void SecItemStore::close() { OpenStore::instance().close(); }

}  // namespace ZORPlatform
