// SPDX-License-Identifier: Apache-2.0
#include <ZORFoundation/ZORRuntimeUtils.h>

#include <algorithm>
#include <typeindex>
#include <unordered_map>

namespace ZORFoundation {
namespace {

using ZORPlatform::RegisteredType;

// The superclass of every registered class; null for a root class.
class Superclasses {
public:
    explicit Superclasses(const std::vector<RegisteredType>& types) {
        for (const RegisteredType& type : types) superclasses_.emplace(*type.type, type.superclass);
    }

    [[nodiscard]] bool derives(const RegisteredType& from, const std::type_info& type) const {
        for (const std::type_info* superclass = from.superclass; superclass != nullptr; superclass = of(*superclass)) {
            if (*superclass == type) return true;
        }
        return false;
    }

private:
    [[nodiscard]] const std::type_info* of(const std::type_info& type) const {
        const auto found = superclasses_.find(type);
        return found != superclasses_.end() ? found->second : nullptr;
    }

    std::unordered_map<std::type_index, const std::type_info*> superclasses_;
};

}  // namespace

std::vector<std::u16string> ZORRuntimeUtils::classStringsForClassesAdoptingProtocol(const std::type_info& protocol) {
    std::vector<std::u16string> names;
    for (const RegisteredType& type : ZORPlatform::registeredTypes()) {
        const bool declares = std::any_of(type.protocols.begin(), type.protocols.end(),
                                          [&](const std::type_info* declared) { return *declared == protocol; });
        if (declares) names.emplace_back(type.name);
    }
    return names;
}

std::vector<std::u16string> ZORRuntimeUtils::classStringsForClassesOfType(const std::type_info& type) {
    const std::vector<RegisteredType> types = ZORPlatform::registeredTypes();
    const Superclasses superclasses(types);
    std::vector<std::u16string> names;
    for (const RegisteredType& candidate : types) {
        if (superclasses.derives(candidate, type)) names.emplace_back(candidate.name);
    }
    return names;
}

}  // namespace ZORFoundation
