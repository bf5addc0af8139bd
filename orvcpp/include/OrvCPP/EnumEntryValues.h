#ifndef ORVCPP_ENUMENTRYVALUES_H
#define ORVCPP_ENUMENTRYVALUES_H

#include <OrvC/OrvCTypes.h>

namespace OrvCPP
{

// Offered (found with dynamic_cast on a feature handle) by enumeration
// features whose camera description gives every entry an integer value
// (GenICam EnumEntry <Value>). The value is the camera's own number for the
// entry, such as the bit of a line in "LineStatusAll", which need not follow
// the entry's name or its position in the list.
class EnumEntryValues
{
public:
    virtual ~EnumEntryValues() = default;

    // The integer value of the named entry; OrvErrorInvalidValue for a name
    // that is not an entry, OrvErrorWrongType when the feature is not an
    // enumeration.
    virtual OrvErrorType GetEntryValue(const char* entry, long long& value) = 0;
};

} // namespace OrvCPP

#endif
