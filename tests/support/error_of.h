#ifndef VEXLO_TESTS_ERROR_OF_H
#define VEXLO_TESTS_ERROR_OF_H

#include "desk_error.h"

#include <gtest/gtest.h>

#include <string>

namespace support
{

/// The one-line message of the desk::Error that `work` throws. Fails the test if it throws none.
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
