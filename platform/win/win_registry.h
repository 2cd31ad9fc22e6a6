#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace varnel::win {

// Registry values addressed the way the program writes them: a key path that starts with its
// root ("HKEY_CURRENT_USER\Software\...", "HKEY_LOCAL_MACHINE\SYSTEM\..."; the short forms HKCU
// and HKLM and '/' as separator are accepted too) and a value name, where "Default" (or ".")
// names the key's unnamed value. Every call reports a Win32 error code (0 on success) and never
// throws.

struct RegistryValue {
    enum class Type { None, Dword, Qword, String, MultiString, Binary };
    Type type = Type::None;
    std::uint32_t dword = 0;
    std::uint64_t qword = 0;
    // REG_SZ and REG_EXPAND_SZ (not expanded).
    std::wstring text;
    std::vector<std::wstring> list;
    // Any other type, as stored.
    std::vector<unsigned char> bytes;
    unsigned long rawType = 0;
};

// Writes create the key (and its parents) when it does not exist.
long setDwordValue(const std::wstring &key, const std::wstring &name, std::uint32_t value);
long setStringValue(const std::wstring &key, const std::wstring &name, const std::wstring &value);
// A multi-string cannot hold an empty entry (an empty string ends the list); such a list is
// refused with ERROR_INVALID_PARAMETER rather than silently cut short.
long setMultiStringValue(const std::wstring &key, const std::wstring &name,
                         const std::vector<std::wstring> &value);

// ERROR_FILE_NOT_FOUND when the key or the value does not exist.
long queryValue(const std::wstring &key, const std::wstring &name, RegistryValue &value);
bool valueExists(const std::wstring &key, const std::wstring &name);
long deleteValue(const std::wstring &key, const std::wstring &name);

// Whether the key exists, independent of its values.
bool keyExists(const std::wstring &key);

} // namespace varnel::win
