#pragma once

// What the stand-in libddcutil was asked, read by the test through the exported fakeDdc.
struct FakeDdcScript {
    int listsFreed;
    int identifiersFreed;
    int opens;
    int closes;
    int writes; // code << 16 | high << 8 | low of the last write
};
