// SPDX-License-Identifier: Apache-2.0
#pragma once

// How the item store of the process is set up. An application that is content with the defaults needs nothing of it.

#include <ZORPlatform/Export.h>
#include <ZORPlatform/Security/SecItemKeySource.h>

#include <memory>

namespace ZORPlatform {

/// The item store behind SecItem.h. It opens the file of `HostEnvironment::itemStorePath` when it is first used, and
/// another whenever that path leads elsewhere. Around a fork it is closed, and each side opens its own when it needs
/// it. Thread-safe.
class ZOR_EXPORT SecItemStore {
public:
    SecItemStore() = delete;

    /// Where the key comes from when a store is opened next; a store that is open is closed. Absent: `SecItemKeyFile`
    /// beside the store.
    static void setKeySource(std::shared_ptr<const SecItemKeySource> source);

    /// Closes the file and wipes the key. The next call on an item opens it again.
    static void close();
};

}  // namespace ZORPlatform
