#include "support/errors.h"

#include <gtest/gtest.h>

#include <string>

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

/// The code that a call raises with an OLE exception; any other exception goes on to the test.
template<class Call>
ComErrorCode RaisedCode(Call call) {
    try {
        call();
    } catch (const COleException& exception) {
        return exception.Code();
    }
    ADD_FAILURE() << "nothing was raised";
    return 0;
}

TEST(RaiseComError, OutOfMemoryIsAMemoryException) {
    EXPECT_THROW(RaiseComError(kErrorOutOfMemory), CMemoryException);
}

TEST(RaiseComError, AnyOtherCodeIsCarried) {
    EXPECT_EQ(RaisedCode([] { RaiseComError(kErrorFail); }), kErrorFail);
    EXPECT_EQ(RaisedCode([] { RaiseComError(kErrorInvalidArgument); }), kErrorInvalidArgument);
    EXPECT_EQ(RaisedCode([] { RaiseComError(0); }), 0);
}

TEST(AfxThrowUserException, RaisesAUserException) {
    EXPECT_THROW(AfxThrowUserException(), CUserException);
}

TEST(Exceptions, EachSaysItsKindToWhoKnowsTheStandardOneAlone) {
    const auto textOf = [](const std::exception& exception) { return std::string(exception.what()); };
    EXPECT_EQ(textOf(CUserException()), "user exception");
    EXPECT_EQ(textOf(CMemoryException()), "out of memory");
    EXPECT_EQ(textOf(CInvalidArgException()), "invalid argument");
    EXPECT_EQ(textOf(COleException(kErrorFail)), "platform error");
}

#ifdef _WIN32
ComErrorCode RaisedForLastError(DWORD error) {
    return RaisedCode([error] {
        SetLastError(error);
        RaiseLastError();
    });
}

TEST(RaiseLastError, GivesAPositiveErrorTheFacilityOfWin32) {
    EXPECT_EQ(RaisedForLastError(ERROR_FILE_NOT_FOUND), static_cast<ComErrorCode>(0x80070002));
    EXPECT_EQ(RaisedForLastError(ERROR_NOT_ENOUGH_MEMORY), static_cast<ComErrorCode>(0x80070008));
}

TEST(RaiseLastError, KeepsTheLowSixteenBits) {
    EXPECT_EQ(RaisedForLastError(0x00012345), static_cast<ComErrorCode>(0x80072345));
}

TEST(RaiseLastError, LeavesACodeAndZeroAsTheyAre) {
    EXPECT_EQ(RaisedForLastError(0x80030002), static_cast<ComErrorCode>(0x80030002));
    EXPECT_EQ(RaisedForLastError(0), 0);
}

TEST(RaiseLastError, ErrorFourteenIsOutOfMemory) {
    SetLastError(ERROR_OUTOFMEMORY);
    EXPECT_THROW(RaiseLastError(), CMemoryException);
}
#endif

}  // namespace
