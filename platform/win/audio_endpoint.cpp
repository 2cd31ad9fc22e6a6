#include "audio_endpoint.h"

#include "win_text.h"

#include <windows.h>

#include <devicetopology.h>
#include <endpointvolume.h>
#include <mmdeviceapi.h>
#include <propidl.h>

namespace varnel::win {

namespace {

// mingw's headers lack these definitions.
const CLSID kMMDeviceEnumerator = {
    0xbcde0395, 0xe52f, 0x467c, {0x8e, 0x3d, 0xc4, 0x57, 0x92, 0x91, 0x69, 0x2e}};
const PROPERTYKEY kDeviceFriendlyName = {
    {0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}}, 14};

const unsigned kMuted = 999;
const unsigned kNotMuted = 111;

template <typename T> struct Held {
    T *p = nullptr;
    ~Held()
    {
        if (p)
            p->Release();
    }
};

// The default render console endpoint, or nullptr. The enumerator is released at once.
IMMDevice *defaultRenderDevice()
{
    Held<IMMDeviceEnumerator> enumerator;
    if (FAILED(CoCreateInstance(kMMDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(IMMDeviceEnumerator),
                                reinterpret_cast<void **>(&enumerator.p))))
        return nullptr;
    IMMDevice *device = nullptr;
    if (FAILED(enumerator.p->GetDefaultAudioEndpoint(eRender, eConsole, &device)))
        return nullptr;
    return device;
}

bool headphonesOnJack(IMMDevice *device)
{
    Held<IDeviceTopology> topology;
    if (FAILED(device->Activate(__uuidof(IDeviceTopology), CLSCTX_ALL, nullptr,
                                reinterpret_cast<void **>(&topology.p))))
        return false;
    Held<IConnector> connector;
    if (FAILED(topology.p->GetConnector(0, &connector.p)))
        return false;
    Held<IConnector> connectedTo;
    if (FAILED(connector.p->GetConnectedTo(&connectedTo.p)))
        return false;
    Held<IPart> part;
    if (FAILED(connectedTo.p->QueryInterface(__uuidof(IPart), reinterpret_cast<void **>(&part.p))))
        return false;
    Held<IKsJackDescription> jacks;
    if (FAILED(part.p->Activate(CLSCTX_ALL, __uuidof(IKsJackDescription),
                                reinterpret_cast<void **>(&jacks.p))))
        return false;
    UINT count = 0;
    if (FAILED(jacks.p->GetJackCount(&count)))
        return false;
    bool found = false;
    for (UINT i = 0; i < count; ++i) {
        KSJACK_DESCRIPTION jack{};
        if (SUCCEEDED(jacks.p->GetJackDescription(i, &jack)) &&
            jackIsHeadphones(jack.ChannelMapping, jack.ConnectionType, jack.IsConnected != FALSE))
            found = true;
    }
    return found;
}

} // namespace

bool jackIsHeadphones(unsigned long channelMapping, int connectionType, bool connected)
{
    return channelMapping == 3 && connectionType == 1 && connected;
}

unsigned endpointVolume(int command, float level, bool mute, long *status)
{
    if (status)
        *status = S_FALSE;
    if (FAILED(CoInitialize(nullptr)))
        return 0;
    unsigned result = 0;
    IMMDevice *device = defaultRenderDevice();
    if (device) {
        Held<IAudioEndpointVolume> volume;
        const HRESULT activated =
            device->Activate(__uuidof(IAudioEndpointVolume), CLSCTX_INPROC_SERVER, nullptr,
                             reinterpret_cast<void **>(&volume.p));
        device->Release();
        HRESULT hr = activated;
        if (SUCCEEDED(activated)) {
            switch (command) {
            case 1: {
                float scalar = 0.0f;
                hr = volume.p->GetMasterVolumeLevelScalar(&scalar);
                if (SUCCEEDED(hr))
                    result = static_cast<unsigned>(scalar * 100.0f + 0.5f);
                break;
            }
            case 2:
                hr = volume.p->SetMasterVolumeLevelScalar(level, nullptr);
                break;
            case 3:
                hr = volume.p->SetMute(mute ? TRUE : FALSE, nullptr);
                break;
            case 4: {
                BOOL muted = FALSE;
                hr = volume.p->GetMute(&muted);
                if (SUCCEEDED(hr))
                    result = muted ? kMuted : kNotMuted;
                break;
            }
            default:
                hr = E_INVALIDARG;
                break;
            }
        }
        if (status)
            *status = hr;
    }
    CoUninitialize();
    return result;
}

std::string outputDeviceName()
{
    if (FAILED(CoInitialize(nullptr)))
        return "No Audio Device";
    IMMDevice *device = defaultRenderDevice();
    if (!device) {
        CoUninitialize();
        return "No Audio Device";
    }
    std::wstring name;
    {
        Held<IPropertyStore> properties;
        if (SUCCEEDED(device->OpenPropertyStore(STGM_READ, &properties.p))) {
            PROPVARIANT value;
            PropVariantInit(&value);
            if (SUCCEEDED(properties.p->GetValue(kDeviceFriendlyName, &value)) &&
                value.vt == VT_LPWSTR && value.pwszVal)
                name = value.pwszVal;
            PropVariantClear(&value);
        }
    }
    const bool headphones = name.find(L"Realtek") != std::wstring::npos && headphonesOnJack(device);
    device->Release();
    CoUninitialize();
    return headphones ? std::string("Realtek HD (Headphones)") : toUtf8(name);
}

} // namespace varnel::win
