// SPDX-License-Identifier: Apache-2.0
//
// Measures one text through the module when it gets an argument, and ends.

#include <ZORPlatform/Foundation/HostEnvironment.h>
#include <ZORPlatform/TextLayout/TextLayout.h>

int main(int count, char**) {
    using namespace ZORPlatform;
    if (count < 2) return 0;
    HostEnvironment::setTextLayoutModule(ZOR_TEXT_LAYOUT_FILE);
    const auto size = boundingRectSize(u"Uw betaling van 12,50 is uitgevoerd.", 100, {u"DejaVu Sans", 12});
    return size && size->height > 0 ? 0 : 1;
}
