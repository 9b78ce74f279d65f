#include "mapi/operation_log.h"

#include "support/log.h"

void LogLine(int level, const wchar_t* operation, const wchar_t* text) {
    Log(level, L"CMAPIObject::%s - %s\r\n", operation, text);
}

void LogResult(const wchar_t* operation, const wchar_t* call, HRESULT result) {
    Log(kLogTrace, L"CMAPIObject::%s - %s(0X%08X)\r\n", operation, call, result);
}

void LogFinish(const wchar_t* operation, bool succeeded) {
    Log(kLogTrace, L"CMAPIObject::%s - Finish(%s)\r\n", operation, Outcome(succeeded));
}
