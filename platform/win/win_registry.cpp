#include "win_registry.h"

#include <windows.h>

#include <algorithm>
#include <cwctype>

namespace varnel::win {

namespace {

class Key {
public:
    Key() = default;
    ~Key()
    {
        if (m_key)
            RegCloseKey(m_key);
    }
    Key(const Key &) = delete;
    Key &operator=(const Key &) = delete;

    HKEY get() const { return m_key; }
    HKEY *out() { return &m_key; }

private:
    HKEY m_key = nullptr;
};

bool equalsIgnoringCase(const std::wstring &a, const wchar_t *b)
{
    const std::wstring other(b);
    return a.size() == other.size() &&
           std::equal(a.begin(), a.end(), other.begin(),
                      [](wchar_t x, wchar_t y) { return std::towupper(x) == std::towupper(y); });
}

struct KeyPath {
    HKEY root = nullptr;
    std::wstring subKey;
};

bool splitPath(const std::wstring &path, KeyPath &out)
{
    std::wstring normal = path;
    std::replace(normal.begin(), normal.end(), L'/', L'\\');
    // Empty segments ("a\\\\b", a trailing separator) would make the Reg* calls fail.
    std::wstring rootName;
    std::wstring subKey;
    size_t pos = 0;
    while (pos <= normal.size()) {
        size_t end = normal.find(L'\\', pos);
        if (end == std::wstring::npos)
            end = normal.size();
        if (end > pos) {
            const std::wstring segment = normal.substr(pos, end - pos);
            if (rootName.empty()) {
                rootName = segment;
            } else {
                if (!subKey.empty())
                    subKey += L'\\';
                subKey += segment;
            }
        }
        pos = end + 1;
    }
    if (equalsIgnoringCase(rootName, L"HKEY_CURRENT_USER") || equalsIgnoringCase(rootName, L"HKCU"))
        out.root = HKEY_CURRENT_USER;
    else if (equalsIgnoringCase(rootName, L"HKEY_LOCAL_MACHINE") ||
             equalsIgnoringCase(rootName, L"HKLM"))
        out.root = HKEY_LOCAL_MACHINE;
    else
        return false;
    out.subKey = subKey;
    return true;
}

std::wstring valueName(const std::wstring &name)
{
    if (name == L"." || equalsIgnoringCase(name, L"Default"))
        return {};
    return name;
}

long openKey(const std::wstring &path, REGSAM access, Key &key)
{
    KeyPath parts;
    if (!splitPath(path, parts))
        return ERROR_INVALID_PARAMETER;
    return RegOpenKeyExW(parts.root, parts.subKey.c_str(), 0, access, key.out());
}

long setValue(const std::wstring &path, const std::wstring &name, DWORD type, const void *data,
              size_t size)
{
    KeyPath parts;
    if (!splitPath(path, parts))
        return ERROR_INVALID_PARAMETER;
    Key key;
    long error = RegCreateKeyExW(parts.root, parts.subKey.c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                 nullptr, key.out(), nullptr);
    if (error != ERROR_SUCCESS)
        return error;
    return RegSetValueExW(key.get(), valueName(name).c_str(), 0, type,
                          static_cast<const BYTE *>(data), static_cast<DWORD>(size));
}

// Stored strings need not carry their terminator, and may carry several.
std::wstring textOf(const std::vector<unsigned char> &bytes)
{
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::copy(bytes.begin(), bytes.begin() + text.size() * sizeof(wchar_t),
              reinterpret_cast<unsigned char *>(text.data()));
    const size_t end = text.find(L'\0');
    if (end != std::wstring::npos)
        text.resize(end);
    return text;
}

std::vector<std::wstring> listOf(const std::vector<unsigned char> &bytes)
{
    std::wstring all(bytes.size() / sizeof(wchar_t), L'\0');
    std::copy(bytes.begin(), bytes.begin() + all.size() * sizeof(wchar_t),
              reinterpret_cast<unsigned char *>(all.data()));
    std::vector<std::wstring> list;
    size_t pos = 0;
    while (pos < all.size()) {
        size_t end = all.find(L'\0', pos);
        if (end == std::wstring::npos)
            end = all.size();
        // The first empty string ends the list.
        if (end == pos)
            break;
        list.push_back(all.substr(pos, end - pos));
        pos = end + 1;
    }
    return list;
}

} // namespace

long setDwordValue(const std::wstring &key, const std::wstring &name, std::uint32_t value)
{
    const DWORD data = value;
    return setValue(key, name, REG_DWORD, &data, sizeof(data));
}

long setStringValue(const std::wstring &key, const std::wstring &name, const std::wstring &value)
{
    return setValue(key, name, REG_SZ, value.c_str(), (value.size() + 1) * sizeof(wchar_t));
}

long setMultiStringValue(const std::wstring &key, const std::wstring &name,
                         const std::vector<std::wstring> &value)
{
    std::wstring data;
    for (const std::wstring &entry : value) {
        if (entry.empty() || entry.find(L'\0') != std::wstring::npos)
            return ERROR_INVALID_PARAMETER;
        data += entry;
        data += L'\0';
    }
    data += L'\0';
    // Readers that expect the closing pair of terminators must find it in an empty list too.
    if (value.empty())
        data += L'\0';
    return setValue(key, name, REG_MULTI_SZ, data.data(), data.size() * sizeof(wchar_t));
}

long queryValue(const std::wstring &path, const std::wstring &name, RegistryValue &value)
{
    value = RegistryValue();
    Key key;
    long error = openKey(path, KEY_QUERY_VALUE, key);
    if (error != ERROR_SUCCESS)
        return error;
    const std::wstring actualName = valueName(name);
    DWORD type = REG_NONE;
    std::vector<unsigned char> data;
    // The value may grow between asking for its size and reading it.
    for (;;) {
        DWORD size = 0;
        error = RegQueryValueExW(key.get(), actualName.c_str(), nullptr, &type, nullptr, &size);
        if (error != ERROR_SUCCESS)
            return error;
        data.resize(size);
        error = RegQueryValueExW(key.get(), actualName.c_str(), nullptr, &type,
                                 data.empty() ? nullptr : data.data(), &size);
        if (error == ERROR_MORE_DATA)
            continue;
        if (error != ERROR_SUCCESS)
            return error;
        data.resize(size);
        break;
    }

    value.rawType = type;
    switch (type) {
    case REG_DWORD:
        if (data.size() < sizeof(std::uint32_t))
            return ERROR_INVALID_DATA;
        value.type = RegistryValue::Type::Dword;
        std::copy(data.begin(), data.begin() + sizeof(std::uint32_t),
                  reinterpret_cast<unsigned char *>(&value.dword));
        break;
    case REG_QWORD:
        if (data.size() < sizeof(std::uint64_t))
            return ERROR_INVALID_DATA;
        value.type = RegistryValue::Type::Qword;
        std::copy(data.begin(), data.begin() + sizeof(std::uint64_t),
                  reinterpret_cast<unsigned char *>(&value.qword));
        break;
    case REG_SZ:
    case REG_EXPAND_SZ:
        value.type = RegistryValue::Type::String;
        value.text = textOf(data);
        break;
    case REG_MULTI_SZ:
        value.type = RegistryValue::Type::MultiString;
        value.list = listOf(data);
        break;
    default:
        value.type = RegistryValue::Type::Binary;
        value.bytes = std::move(data);
        break;
    }
    return ERROR_SUCCESS;
}

bool valueExists(const std::wstring &path, const std::wstring &name)
{
    Key key;
    if (openKey(path, KEY_QUERY_VALUE, key) != ERROR_SUCCESS)
        return false;
    return RegQueryValueExW(key.get(), valueName(name).c_str(), nullptr, nullptr, nullptr,
                            nullptr) == ERROR_SUCCESS;
}

long deleteValue(const std::wstring &path, const std::wstring &name)
{
    Key key;
    const long error = openKey(path, KEY_SET_VALUE, key);
    if (error != ERROR_SUCCESS)
        return error;
    return RegDeleteValueW(key.get(), valueName(name).c_str());
}

bool keyExists(const std::wstring &path)
{
    Key key;
    return openKey(path, KEY_QUERY_VALUE, key) == ERROR_SUCCESS;
}

} // namespace varnel::win
