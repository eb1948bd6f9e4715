#include <string>

// As little C++ as a plugin can be made of, its standard library included.
extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	static std::string text;
	text.append("text");
	return static_cast<int>(text.size());
}
