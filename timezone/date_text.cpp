#include "timezone/date_text.h"

#include "support/number_text.h"
#include "support/text.h"

DateTextNumbers CutDateText(WideView text) {
    NAMESPACE_COMMON::CStringEx rest(text);
    DateTextNumbers numbers;
    numbers.year = ReadNumber(rest.NextToken(WIDE("-")));
    numbers.month = ReadNumber(rest.NextToken(WIDE("-")));
    numbers.day = ReadNumber(rest.NextToken(WIDE(" ")));
    numbers.hour = ReadNumber(rest.NextToken(WIDE(":")));
    numbers.minute = ReadNumber(rest.NextToken(WIDE(":")));
    numbers.second = ReadNumber(rest.NextToken(WIDE(":")));
    return numbers;
}
