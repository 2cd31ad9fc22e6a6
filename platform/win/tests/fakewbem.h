#pragma once

// Hand-made WMI objects for the brightness and laptop-switch tests: Wine's root\wmi has neither
// monitor instances nor the laptop's class, so the per-instance part of the conversation is
// driven against these. Every call is recorded.

#include <windows.h>

#include <string>
#include <vector>
#include <wbemidl.h>

namespace fakewbem {

inline std::vector<std::wstring> calls;

inline void record(const std::wstring &call)
{
    calls.push_back(call);
}

inline std::wstring text(const wchar_t *s)
{
    return s ? std::wstring(s) : std::wstring(L"(null)");
}

#define STUB(signature)                                                                            \
    HRESULT STDMETHODCALLTYPE signature override                                                   \
    {                                                                                              \
        return E_NOTIMPL;                                                                          \
    }

template <typename Interface> class Unknown : public Interface {
public:
    virtual ~Unknown() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void **out) override
    {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_refs; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --m_refs;
        if (left == 0)
            delete this;
        return left;
    }

private:
    ULONG m_refs = 1;
};

// An instance, a class or a parameter object: Get answers from the given fields, Put records.
class Object : public Unknown<IWbemClassObject> {
public:
    Object(std::wstring name, int brightness, bool failGet = false)
        : m_name(std::move(name)), m_brightness(brightness), m_failGet(failGet)
    {
    }

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR property, LONG, VARIANT *value, CIMTYPE *,
                                  LONG *) override
    {
        record(m_name + L".Get " + text(property));
        if (m_failGet)
            return WBEM_E_NOT_FOUND;
        VariantInit(value);
        if (std::wstring(property) == L"__PATH") {
            value->vt = VT_BSTR;
            value->bstrVal = SysAllocString((L"path:" + m_name).c_str());
        } else {
            value->vt = VT_UI1;
            value->bVal = static_cast<BYTE>(m_brightness);
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR property, LONG, VARIANT *value, CIMTYPE type) override
    {
        record(m_name + L".Put " + text(property) + L"=" +
               (value->vt == VT_BSTR ? text(value->bstrVal) : std::wstring(L"?")) + L" type " +
               std::to_wstring(type));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG, IWbemClassObject **in,
                                        IWbemClassObject **) override
    {
        record(m_name + L".GetMethod " + text(name));
        *in = new Object(L"signature", 0);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject **out) override
    {
        record(m_name + L".SpawnInstance " + std::to_wstring(flags));
        *out = new Object(L"in", 0);
        return S_OK;
    }

    STUB(GetQualifierSet(IWbemQualifierSet **))
    STUB(Delete(LPCWSTR))
    STUB(GetNames(LPCWSTR, LONG, VARIANT *, SAFEARRAY **))
    STUB(BeginEnumeration(LONG))
    STUB(Next(LONG, BSTR *, VARIANT *, CIMTYPE *, LONG *))
    STUB(EndEnumeration())
    STUB(GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet **))
    STUB(Clone(IWbemClassObject **))
    STUB(GetObjectText(LONG, BSTR *))
    STUB(SpawnDerivedClass(LONG, IWbemClassObject **))
    STUB(CompareTo(LONG, IWbemClassObject *))
    STUB(GetPropertyOrigin(LPCWSTR, BSTR *))
    STUB(InheritsFrom(LPCWSTR))
    STUB(PutMethod(LPCWSTR, LONG, IWbemClassObject *, IWbemClassObject *))
    STUB(DeleteMethod(LPCWSTR))
    STUB(BeginMethodEnumeration(LONG))
    STUB(NextMethod(LONG, BSTR *, IWbemClassObject **, IWbemClassObject **))
    STUB(EndMethodEnumeration())
    STUB(GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet **))
    STUB(GetMethodOrigin(LPCWSTR, BSTR *))

private:
    std::wstring m_name;
    int m_brightness;
    bool m_failGet;
};

// Hands out the given instances one at a time, then reports the end.
class Enumerator : public Unknown<IEnumWbemClassObject> {
public:
    explicit Enumerator(std::vector<IWbemClassObject *> instances)
        : m_instances(std::move(instances))
    {
    }
    ~Enumerator() override
    {
        for (size_t i = m_next; i < m_instances.size(); ++i)
            m_instances[i]->Release();
    }
    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject **objects,
                                   ULONG *returned) override
    {
        record(L"Next " + std::to_wstring(timeout) + L" " + std::to_wstring(count));
        if (m_next >= m_instances.size()) {
            *returned = 0;
            return WBEM_S_FALSE;
        }
        objects[0] = m_instances[m_next++];
        *returned = 1;
        return S_OK;
    }
    STUB(Reset())
    STUB(NextAsync(ULONG, IWbemObjectSink *))
    STUB(Clone(IEnumWbemClassObject **))
    STUB(Skip(LONG, ULONG))

private:
    std::vector<IWbemClassObject *> m_instances;
    size_t m_next = 0;
};

// root\wmi with a number of panels, each reporting its own brightness.
class Services : public Unknown<IWbemServices> {
public:
    std::vector<int> panels;
    bool failGet = false;

    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext *, IEnumWbemClassObject **out) override
    {
        record(L"ExecQuery " + text(language) + L" " + text(query) + L" " + std::to_wstring(flags));
        std::vector<IWbemClassObject *> instances;
        for (size_t i = 0; i < panels.size(); ++i)
            instances.push_back(new Object(L"panel" + std::to_wstring(i), panels[i], failGet));
        *out = new Enumerator(instances);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG, IWbemContext *,
                                        IWbemClassObject **out, IWbemCallResult **) override
    {
        record(L"GetObject " + text(path));
        *out = new Object(L"class", 0);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                         IWbemContext *context, IWbemClassObject *in,
                                         IWbemClassObject **out, IWbemCallResult **result) override
    {
        record(L"ExecMethod " + text(path) + L" " + text(method) + L" " + std::to_wstring(flags) +
               (context || !in || out || result ? L" unexpected arguments" : L""));
        return S_OK;
    }

    STUB(OpenNamespace(const BSTR, LONG, IWbemContext *, IWbemServices **, IWbemCallResult **))
    STUB(CancelAsyncCall(IWbemObjectSink *))
    STUB(QueryObjectSink(LONG, IWbemObjectSink **))
    STUB(GetObjectAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(PutClass(IWbemClassObject *, LONG, IWbemContext *, IWbemCallResult **))
    STUB(PutClassAsync(IWbemClassObject *, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(DeleteClass(const BSTR, LONG, IWbemContext *, IWbemCallResult **))
    STUB(DeleteClassAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(CreateClassEnum(const BSTR, LONG, IWbemContext *, IEnumWbemClassObject **))
    STUB(CreateClassEnumAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(PutInstance(IWbemClassObject *, LONG, IWbemContext *, IWbemCallResult **))
    STUB(PutInstanceAsync(IWbemClassObject *, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(DeleteInstance(const BSTR, LONG, IWbemContext *, IWbemCallResult **))
    STUB(DeleteInstanceAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(CreateInstanceEnum(const BSTR, LONG, IWbemContext *, IEnumWbemClassObject **))
    STUB(CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext *, IWbemObjectSink *))
    STUB(ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext *,
                               IEnumWbemClassObject **))
    STUB(ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext *,
                                    IWbemObjectSink *))
    STUB(ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext *, IWbemClassObject *,
                         IWbemObjectSink *))
};

} // namespace fakewbem

#undef STUB
