// SPDX-License-Identifier: Apache-2.0
#include "Operations.h"

#include <algorithm>
#include <stdexcept>

namespace conformance {

const Value& Arguments::operator[](std::size_t index) const {
    if (index >= case_.arguments.size()) {
        throw WrongKind("the operation asks for argument " + std::to_string(index) + ", the case has " +
                        std::to_string(case_.arguments.size()));
    }
    used_ = std::max(used_, index + 1);
    return case_.arguments[index];
}

const Operations::Operation* Operations::find(std::string_view name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : &found->second;
}

void Operations::insert(std::string name, Operation operation) {
    const auto [entry, isNew] = byName_.emplace(std::move(name), std::move(operation));
    if (!isNew) throw std::logic_error("registered twice: " + entry->first);
}

}  // namespace conformance
