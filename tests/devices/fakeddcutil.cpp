// A stand-in for libddcutil with the entry points the DDC/CI backend resolves. It knows a USB
// display, which the backend skips, and one I2C display on bus 7 whose brightness (0x10) reads
// 258 of 300; every other feature and bus is refused.
#include "fakeddcutil.h"

#include <ddcutil_c_api.h>
#include <ddcutil_status_codes.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#define EXPORT __attribute__((visibility("default")))

extern "C" {

EXPORT FakeDdcScript fakeDdc = {};

EXPORT void ddca_set_fout(FILE *) {}
EXPORT void ddca_set_ferr(FILE *) {}

EXPORT DDCA_Status ddca_get_display_info_list2(bool, DDCA_Display_Info_List **list)
{
    auto *out = static_cast<DDCA_Display_Info_List *>(
        std::calloc(1, sizeof(DDCA_Display_Info_List) + 2 * sizeof(DDCA_Display_Info)));
    out->ct = 2;
    out->info[0].path.io_mode = DDCA_IO_USB;
    out->info[1].path.io_mode = DDCA_IO_I2C;
    out->info[1].path.path.i2c_busno = 7;
    std::strcpy(out->info[1].model_name, " DELL U2719D");
    std::strcpy(out->info[1].sn, "ABC123 ");
    *list = out;
    return 0;
}

EXPORT void ddca_free_display_info_list(DDCA_Display_Info_List *list)
{
    ++fakeDdc.listsFreed;
    std::free(list);
}

EXPORT DDCA_Status ddca_create_busno_display_identifier(int bus, DDCA_Display_Identifier *id)
{
    if (bus != 7)
        return DDCRC_ARG;
    *id = reinterpret_cast<DDCA_Display_Identifier>(std::intptr_t(bus));
    return 0;
}

EXPORT DDCA_Status ddca_get_display_ref(DDCA_Display_Identifier id, DDCA_Display_Ref *ref)
{
    *ref = id;
    return 0;
}

EXPORT DDCA_Status ddca_free_display_identifier(DDCA_Display_Identifier)
{
    ++fakeDdc.identifiersFreed;
    return 0;
}

EXPORT DDCA_Status ddca_open_display2(DDCA_Display_Ref ref, bool, DDCA_Display_Handle *handle)
{
    ++fakeDdc.opens;
    *handle = ref;
    return 0;
}

EXPORT DDCA_Status ddca_close_display(DDCA_Display_Handle)
{
    ++fakeDdc.closes;
    return 0;
}

EXPORT DDCA_Status ddca_get_non_table_vcp_value(DDCA_Display_Handle, DDCA_Vcp_Feature_Code code,
                                                DDCA_Non_Table_Vcp_Value *value)
{
    if (code != 0x10)
        return DDCRC_REPORTED_UNSUPPORTED;
    *value = DDCA_Non_Table_Vcp_Value{0x01, 0x2c, 0x01, 0x02};
    return 0;
}

EXPORT DDCA_Status ddca_set_non_table_vcp_value(DDCA_Display_Handle, DDCA_Vcp_Feature_Code code,
                                                uint8_t high, uint8_t low)
{
    fakeDdc.writes = code << 16 | high << 8 | low;
    return 0;
}

} // extern "C"
