#pragma once

#include <resmgt/liString.h>
#include <resmgt/resmgtExport.h>

class TS_RESMGT_API LiStringUtil {
public:
    // The decimal text of a number ("-12").
    static LiString convertNb(int number);

    // A name made fit to show: every character other than a letter, a digit or
    // a blank (the separators of internal names such as '_' or '.') is
    // replaced by `replacement`; leading and trailing replacements are
    // dropped and runs of them fold into one.
    static LiString sanitise(const LiString& text, const LiString& replacement);

    static LiString trim(const LiString& text);
};
