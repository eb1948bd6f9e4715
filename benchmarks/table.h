#ifndef BENCH_TABLE_H
#define BENCH_TABLE_H

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace bench
{

/// The median, the mean of the middle two for an even number of values; 0 for none.
inline double median(std::vector<double> values)
{
	if (values.empty())
		return 0;
	std::sort(values.begin(), values.end());
	const size_t half = values.size() / 2;
	return values.size() % 2 ? values[half] : (values[half - 1] + values[half]) / 2;
}

inline std::string text(double value, int decimals, const char *unit = "")
{
	char buffer[64];
	std::snprintf(buffer, sizeof buffer, "%.*f%s", decimals, value, unit);
	return buffer;
}

/// Prints one line of the table for ./bench, columns separated by tabs. Without `limit`, the figure is informative.
inline void row(const std::string &figure, const std::string &measured, const std::string &baseline,
                const std::string &result, const std::string &limit, bool held)
{
	std::printf("%s\t%s\t%s\t%s\t%s\t%s\n", figure.c_str(), measured.c_str(), baseline.c_str(),
	            result.c_str(), limit.c_str(),
	            limit.empty() ? ""
	            : held        ? "pass"
	                          : "FAIL");
	std::fflush(stdout);
}

} // namespace bench

#endif
