#include <string>

// A minimal plugin that still links the standard library.
extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	static std::string text;
	text.append("text");
	return static_cast<int>(text.size());
}
