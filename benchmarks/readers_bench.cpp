// Each reader per line, compared with the tests' model of it. Both take turns in random order; the
// figure is the ratio of the medians.

#include "readers.h"
#include "table.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

namespace
{

/// Collects the time of each repetition in nanoseconds, by benchmark.
class Times : public benchmark::BenchmarkReporter
{
public:
	bool ReportContext(const Context &) override { return true; }

	void ReportRuns(const std::vector<Run> &runs) override
	{
		for (const Run &run : runs)
			if (run.run_type == Run::RT_Iteration)
				values[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
	}

	std::map<std::string, std::vector<double>> values;
};

void measure(const std::string &name, const std::function<void()> &read)
{
	benchmark::RegisterBenchmark(name.c_str(),
	                             [read](benchmark::State &state) {
									 for ([[maybe_unused]] auto turn : state)
										 read();
								 })
		->Repetitions(21)
		->MinTime(0.02)
		->Unit(benchmark::kNanosecond);
}

} // namespace

int main()
{
	char name[] = "readers_bench", interleaved[] = "--benchmark_enable_random_interleaving=true";
	char *arguments[] = {name, interleaved, nullptr};
	int count = 2;
	benchmark::Initialize(&count, arguments);

	const std::vector<bench::Pair> all = bench::pairs();
	for (const bench::Pair &pair : all) {
		FILE *stream = bench::streamOf(pair.input);
		if (!pair.same(stream, pair.input)) {
			std::fprintf(stderr, "readers_bench: %s: reader and model give different results\n",
			             pair.name.c_str());
			return 2;
		}
		measure(pair.name, [&pair, stream] {
			std::rewind(stream);
			pair.read(stream);
		});
		measure(pair.name + ", model", [&pair] { pair.readByModel(pair.input); });
	}
	Times times;
	benchmark::RunSpecifiedBenchmarks(&times);

	for (const bench::Pair &pair : all) {
		const double ours = bench::median(times.values[pair.name]) / pair.lines;
		const double model = bench::median(times.values[pair.name + ", model"]) / pair.lines;
		bench::row("reader, a line: " + pair.name, bench::text(ours, 0, " ns"), bench::text(model, 0, " ns"),
		           bench::text(ours / model, 2), "<= " + bench::text(pair.limit, 1),
		           model > 0 && ours / model <= pair.limit);
	}
	return 0;
}
