// SPDX-License-Identifier: Apache-2.0
//
// The same measurement by a program that is linked with Pango.

#include <benchmarks/ZORPlatform/PangoMeasure.h>

int main() { return benchmarks::PangoMeasure().height("Uw betaling van 12,50 is uitgevoerd.", 100) > 0 ? 0 : 1; }
