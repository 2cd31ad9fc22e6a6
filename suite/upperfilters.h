#pragma once

// The hot-key filter rule for a device class's "UpperFilters" list. Kept free of Qt because the
// Windows backend's tests apply the same rule to lists stored in a real registry.

#include <algorithm>

// Removes every entry equal to driver (case-sensitive), keeping the others in their order.
// Returns false and leaves the list untouched when it does not hold driver, so the caller knows
// that nothing is to be written back. Works for QStringList and std::vector<std::wstring> alike.
template <typename List, typename Text> bool removeFilterDriver(List &filters, const Text &driver)
{
    const auto first = std::remove(filters.begin(), filters.end(), driver);
    if (first == filters.end())
        return false;
    filters.erase(first, filters.end());
    return true;
}
