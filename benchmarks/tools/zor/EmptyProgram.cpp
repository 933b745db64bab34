// SPDX-License-Identifier: Apache-2.0
//
// Does nothing, with the libraries of zor loaded: what starting zor can cost at least.

int main() { return 0; }
