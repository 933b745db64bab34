// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Security/ItemStorageInternal.h>

namespace ZORPlatform {

ItemStorage::~ItemStorage() = default;

}  // namespace ZORPlatform
