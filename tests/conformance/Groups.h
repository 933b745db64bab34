// SPDX-License-Identifier: Apache-2.0
#pragma once

// The groups of operations, each registered in a source file of its own.

namespace conformance {

class Operations;

void registerAccountNumberOperations(Operations& operations);
void registerAmountOperations(Operations& operations);
void registerCardNumberOperations(Operations& operations);
void registerCipherOperations(Operations& operations);
void registerDateOperations(Operations& operations);
void registerDigestOperations(Operations& operations);
void registerErrorOperations(Operations& operations);
void registerIdentityNumberOperations(Operations& operations);
void registerInputValidationOperations(Operations& operations);
void registerPatternOperations(Operations& operations);
void registerSecurityOperations(Operations& operations);
void registerStringOperations(Operations& operations);
void registerStructuredCommentOperations(Operations& operations);

}  // namespace conformance
