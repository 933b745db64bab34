// SPDX-License-Identifier: Apache-2.0
//
// Writes to an item store until it is done or killed, and says so of each write that was acknowledged.
//
//     item-store-writer STORE THREADS ITEMS NAME      ITEMS items a thread, one byte of standard output for each
//     item-store-writer STORE COUNT                   one item counted up for ever, eight bytes for each step
#include <ZORPlatform/Security/SecItem.h>

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace ZORPlatform;
using Data = SecItemValue::Data;

Data bytesOf(std::uint64_t number) {
    Data bytes(sizeof number);
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

bool addItem(const std::string& account) {
    const Data value(account.begin(), account.end());
    return SecItemAdd({{kSecClass, kSecClassGenericPassword}, {kSecAttrAccount, value}, {kSecValueData, value}}) ==
           errSecSuccess;
}

int addItems(int threadCount, int items, const std::string& name) {
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (int item = 0; item < items; ++item) {
                if (!addItem(name + std::to_string(thread) + "-" + std::to_string(item))) ++failures;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    return failures == 0 ? 0 : 1;
}

// Each number once in an item that is changed and once in an item of its own; old ones are deleted.
int count() {
    for (std::uint64_t number = 1;; ++number) {
        const SecItemDictionary counter{{kSecClass, kSecClassGenericPassword}, {kSecAttrAccount, u"counter"}};
        SecItemDictionary added = counter;
        added.set(kSecValueData, bytesOf(number));
        OSStatus status = SecItemAdd(added);
        if (status == errSecDuplicateItem) status = SecItemUpdate(counter, {{kSecValueData, bytesOf(number)}});
        if (status != errSecSuccess) return 1;
        if (SecItemAdd({{kSecClass, kSecClassKey}, {kSecAttrApplicationLabel, bytesOf(number)}}) != errSecSuccess) {
            return 1;
        }
        if (::write(STDOUT_FILENO, &number, sizeof number) != sizeof number) return 2;
        if (number > 20 && SecItemDelete({{kSecClass, kSecClassKey},
                                          {kSecAttrApplicationLabel, bytesOf(number - 20)}}) != errSecSuccess) {
            return 1;
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    HostEnvironment::setItemStorePath(argv[1]);
    return argc == 5 ? addItems(std::atoi(argv[2]), std::atoi(argv[3]), argv[4]) : count();
}
