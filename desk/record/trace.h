#ifndef DESK_RECORD_TRACE_H
#define DESK_RECORD_TRACE_H

#include <cstdio>
#include <string>
#include <string_view>
#include <unordered_map>

namespace desk
{

/// Every call that the plugin makes to its host, one line each, in order.
///
/// Objects are numbered as they appear. Only calls from the plugin are meant: what the host does for
/// itself runs muted.
class Trace
{
public:
	static Trace &get();

	/// Starts writing to `path`. On failure returns false and leaves one line in `error`.
	bool open(const std::string &path, std::string &error);

	/// Ends it. False when not everything could be written.
	bool close();

	/// Whether lines are written just now.
	bool on() const { return file && muted == 0; }

	/// An object as a trace names it: "#3"; "null" for none.
	std::string name(const void *object);

	/// The object is gone; another one at its address is a new one.
	void forget(const void *object);

	/// "#3.move(5, 30)"
	template <class... Args> void call(const void *object, const char *operation, const Args &...args)
	{
		if (!on())
			return;
		const std::string who = name(object); // numbered before what is among the arguments
		line(who + '.' + operation + list(args...));
	}

	/// "eSkin.queryValue("fontsize", 20)", optionally with what came back: " = 20"
	template <class... Args> std::string form(const char *function, const Args &...args)
	{
		return function + list(args...);
	}

	void line(const std::string &text);

	/// A string as in JSON.
	static std::string quoted(std::string_view text);

	/// An object among the arguments.
	struct Ref
	{
		const void *object;
	};

	/// Brackets a constructor or destructor, so that only the outermost one of an object is traced.
	/// A constructor calls begin() where it makes the arguments of its base.
	template <class T> static T begin(T argument)
	{
		++get().muted;
		return argument;
	}
	template <class... Args>
	static void constructed(const void *object, const char *type, const Args &...args)
	{
		Trace &trace = get();
		--trace.muted;
		if (!trace.on())
			return;
		const std::string who = trace.name(object);
		trace.line(who + " = " + type + trace.list(args...));
	}

	int muted = 0;

private:
	template <class... Args> std::string list(const Args &...args)
	{
		std::string text = "(";
		[[maybe_unused]] const char *separator = "";
		((text += separator, text += argument(args), separator = ", "), ...); // from left to right
		return text + ')';
	}

	std::string argument(int value) { return std::to_string(value); }
	std::string argument(bool value) { return value ? "true" : "false"; }
	std::string argument(const char *text) { return text ? quoted(text) : "null"; }
	std::string argument(const std::string &text) { return quoted(text); }
	std::string argument(Ref ref) { return name(ref.object); }

	FILE *file = nullptr;
	bool failed = false;
	int lastNumber = 0;
	std::unordered_map<const void *, int> numbers;
};

} // namespace desk

#endif
