#ifndef VEXLO_TESTS_ERROR_OF_H
#define VEXLO_TESTS_ERROR_OF_H

#include "desk_error.h"

#include <gtest/gtest.h>

#include <string>

namespace support
{

/// What the user is told of the desk::Error that `work` throws, which is one line. The test fails when it throws none.
template <class Work> std::string errorOf(const Work &work)
{
	try {
		work();
	} catch (const desk::Error &error) {
		EXPECT_EQ(error.line.find('\n'), std::string::npos) << error.line;
		return error.line;
	}
	ADD_FAILURE() << "nothing has failed";
	return {};
}

} // namespace support

#endif
