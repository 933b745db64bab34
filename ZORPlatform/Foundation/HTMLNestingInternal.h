// SPDX-License-Identifier: Apache-2.0
#pragma once

// A look at markup before it is parsed. The parser's time grows with the square of the depth of its document and of the
// number of a tag's attributes, so that half a megabyte of tags would keep it busy for ten seconds.

#include <cstddef>
#include <string_view>
#include <vector>

namespace ZORPlatform {

/// Whether the markup nests elements more than 512 deep, or has a tag with more attributes than that. All tags of the
/// document's root and of its body count as one.
///
/// Told from tags alone, without a document: the open elements are followed as the HTML standard builds its tree, so
/// that no markup is deeper than it seems. Elements whose end tag may be left out and that end one another do not
/// count, nor do the parts of a table. Formatting that is closed with what it stands in, as in "<p><b></p>", counts: it
/// is opened again in all that comes next.
///
/// @param formEnds  takes the positions of those end tags of forms that stand behind text, in order, as far as the look
///                  goes
///
/// In linear time.
[[nodiscard]] bool isNestedTooDeep(std::string_view markup, std::vector<std::size_t>* formEnds = nullptr);

}  // namespace ZORPlatform
