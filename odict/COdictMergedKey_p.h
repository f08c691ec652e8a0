#pragma once

// The merged name key "<name>_<sub-id>" without building it: the name index compares and hashes
// names through the suffix alone, so lookups never allocate.

/// '_' and the at most 10 decimal digits of a 32-bit sub-id.
constexpr int kMergedSuffixMax = 11;

/// Writes the merged-key suffix of \a subId ("_" and its decimal digits) to \a buffer (at least
/// kMergedSuffixMax units); answers its length, 0 for no sub-id (0xFFFFFFFF).
inline int mergedKeySuffix(unsigned int subId, char16_t *buffer)
{
    if (subId == 0xFFFFFFFFu)
        return 0;
    char16_t digits[kMergedSuffixMax - 1];
    int count = 0;
    do {
        digits[count++] = char16_t(u'0' + subId % 10);
        subId /= 10;
    } while (subId != 0);
    buffer[0] = u'_';
    for (int i = 0; i < count; ++i)
        buffer[1 + i] = digits[count - 1 - i];
    return count + 1;
}
