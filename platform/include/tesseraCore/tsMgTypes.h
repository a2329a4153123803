#pragma once

#include <tesseraCore/tesseraCoreExport.h>

// The matte generator's types.
class TS_CORE_API TsMgTypes {
public:
    // The nine matte parameters, in order (their meanings: TsKeyerSettings).
    // Iterate from Overall with next() while the value is below
    // MatteParamCount.
    enum MatteParam {
        Overall = 0,
        Shadows = 1,
        Highlights = 2,
        DeepHuePlus = 3,
        DeepHueMinus = 4,
        HuePlus = 5,
        HueMinus = 6,
        EdgeSoftness = 7,
        KeyBlend = 8, // the blend between the two key colours
        MatteParamCount = 9,
    };

    static MatteParam next(MatteParam p) {
        return static_cast<MatteParam>(static_cast<int>(p) + 1);
    }
};
