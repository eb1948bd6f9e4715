#include "crash_report.h"

#include <elfutils/libdwfl.h>
#include <sys/wait.h>

#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <filesystem>
#include <memory>

namespace desk
{

namespace
{

std::string demangled(const char *name)
{
	if (std::strncmp(name, "_Z", 2) != 0) // a function of C, whose name may be that of a type
		return name;
	int status = 0;
	char *text = abi::__cxa_demangle(name, nullptr, nullptr, &status);
	std::string clear = text ? text : name;
	std::free(text);
	return clear;
}

std::string nameOf(int signal)
{
	return "signal " + std::to_string(signal) + ", " + strsignal(signal);
}

/// Looks up debug information; a file that this computer lacks has none.
class DebugInformation
{
public:
	/// "function() at file.cpp:12", or the known part of it; empty if unknown.
	std::string at(const Crash::Place &place)
	{
		Dwfl_Module *module = moduleOf(place.file);
		if (!module)
			return {};
		Dwarf_Addr start = 0;
		dwfl_module_info(module, nullptr, &start, nullptr, nullptr, nullptr, nullptr, nullptr);
		const Dwarf_Addr address = start + place.offset;
		const char *function = dwfl_module_addrname(module, address);
		std::string text = function ? demangled(function) : "";
		int number = 0;
		Dwfl_Line *line = dwfl_module_getsrc(module, address);
		if (const char *file =
		        line ? dwfl_lineinfo(line, nullptr, &number, nullptr, nullptr, nullptr) : nullptr)
			text += (text.empty() ? "" : " at ") + std::filesystem::path(file).filename().string() + ':' +
			        std::to_string(number);
		return text;
	}

private:
	struct End
	{
		void operator()(Dwfl *ended) const { dwfl_end(ended); }
	};

	Dwfl_Module *moduleOf(const std::string &file)
	{
		std::error_code failed;
		if (!std::filesystem::is_regular_file(file, failed))
			return nullptr;
		static const Dwfl_Callbacks callbacks = {nullptr, dwfl_standard_find_debuginfo,
		                                         dwfl_offline_section_address, nullptr};
		// A session for each file, because every offline file has the same addresses.
		session.reset(dwfl_begin(&callbacks));
		dwfl_report_begin(session.get());
		Dwfl_Module *module = dwfl_report_offline(session.get(), file.c_str(), file.c_str(), -1);
		dwfl_report_end(session.get(), nullptr, nullptr);
		return module;
	}

	std::unique_ptr<Dwfl, End> session;
};

std::string hexadecimal(uint64_t number)
{
	char text[32];
	snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
	return text;
}

bool isSameFile(const std::string &one, const std::string &other)
{
	std::error_code failed;
	return std::filesystem::equivalent(one, other, failed) ||
	       std::filesystem::path(one).filename() == std::filesystem::path(other).filename();
}

} // namespace

CrashReport reportOf(const std::optional<Crash> &crash, int status, const std::string &plugin)
{
	CrashReport report;
	const auto say = [&](const std::string &line) { report.lines.push_back(line); };
	if (crash && !crash->what.empty())
		say("Nobody caught its exception " + crash->what);
	else if (crash && crash->signal == 0)
		say("It called exit(" + std::to_string(crash->status) + ") in the middle of its run");
	else if (crash || WIFSIGNALED(status))
		say("It was ended by " + nameOf(crash ? crash->signal : WTERMSIG(status)));
	else
		say("It ended in the middle of its run, with status " + std::to_string(WEXITSTATUS(status)));
	if (!crash)
		return report;

	if (!crash->event.empty())
		say("It was dealing with " + crash->event);
	if (!crash->call.empty())
		say("Its last call: " + crash->call);
	if (!crash->gone.empty())
		say("It seems to have used or deleted " + crash->gone +
		    " after its end; a window deletes its children");
	unsetenv("DEBUGINFOD_URLS"); // no network
	DebugInformation information;
	bool found = false;
	for (const Crash::Place &place : crash->stack) {
		std::string known = information.at(place);
		if (!found && isSameFile(place.file, plugin)) {
			found = true;
			say("It was in " +
			    (known.empty() ? "its own code, which was built without debug information" : known));
		}
		report.stack.push_back(place.file + '+' + hexadecimal(place.offset) +
		                       (known.empty() ? "" : ": " + known));
	}
	return report;
}

} // namespace desk
