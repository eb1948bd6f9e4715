#ifndef DESK_RECORD_TRACE_H
#define DESK_RECORD_TRACE_H

#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

namespace desk
{

/// Every call that the plugin makes to its host, one line each, in order.
///
/// Objects are named by the host's class that was constructed and counted per class, as they first
/// appear in a line: "eLabel#2". A list's entry is constructed by the plugin's own code and appears
/// when it is appended; whatever its class, it is an "eListBoxEntry".
class Trace
{
public:
	static Trace &get();

	/// Starts writing to `path`. On failure returns false and leaves one line in `error`.
	bool open(const std::string &path, std::string &error);

	/// Ends it. False when not everything could be written.
	bool close();

	/// Whether lines are written just now.
	bool on() const { return file && quiet == 0; }

	/// Whether the host works for itself just now.
	bool isQuiet() const { return quiet > 0; }

	/// While one lives, the host works for itself: nothing is written.
	class Quiet
	{
	public:
		Quiet() { ++get().quiet; }
		~Quiet() { --get().quiet; }
		Quiet(const Quiet &) = delete;
		Quiet &operator=(const Quiet &) = delete;

		/// `Base(Trace::Quiet().with(argument))` keeps a whole base constructor quiet.
		template <class T> T with(T argument) const { return argument; }
	};

	/// A constructor: "eLabel#2 = eLabel(eWindow#1, 0, 0, "eLabel")". Derived classes keep
	/// the constructors of their bases quiet.
	template <class... Args> void constructed(const void *object, const char *type, const Args &...args)
	{
		if (!file)
			return;
		objects[object] = {type, 0, quiet != 0};
		if (on())
			line(name(object) + " = " + type + list(args...));
	}

	/// The destructor that all have in common: "eLabel#2.~eLabel()". Nothing is written about an object
	/// that the host has constructed for itself or disposes of.
	void destroyed(const void *object);
	void disposes(const void *object);

	/// An object is gone without a line; another one at its address is a new one.
	void forget(const void *object) { objects.erase(object); }

	/// An operation: "eLabel#2.move(5, 30)".
	template <class... Args> void call(const void *object, const char *operation, const Args &...args)
	{
		if (!on())
			return;
		const std::string who = name(object); // numbered before what is among the arguments
		line(who + '.' + operation + list(args...));
	}

	/// The end of one that was written as it began: "eWindow#1.exec() = 0".
	template <class Result> void returned(const void *object, const char *operation, const Result &result)
	{
		if (on())
			line(name(object) + '.' + operation + "() = " + argument(result));
	}

	/// A function that belongs to no object: "eDebug("close file")".
	template <class... Args> void function(const char *what, const Args &...args)
	{
		if (on())
			line(form(what, args...));
	}

	/// The same with what it returned: "eSkin.queryValue("fontsize", 20) = 20".
	template <class Result, class... Args>
	void result(const Result &value, const char *what, const Args &...args)
	{
		if (on())
			line(form(what, args...) + " = " + argument(value));
	}

	/// A function's call as text, for results that are put in words.
	template <class... Args> std::string form(const char *what, const Args &...args)
	{
		return what + list(args...);
	}

	void line(const std::string &text);

private:
	struct Object
	{
		const char *type;   ///< a literal
		int number = 0;     ///< 0: it has not appeared yet
		bool hosts = false; ///< its end is not the plugin's doing
	};

	template <class... Args> std::string list(const Args &...args)
	{
		std::string text = "(";
		[[maybe_unused]] const char *separator = "";
		((text += separator, text += argument(args), separator = ", "), ...); // from left to right
		return text + ')';
	}

	std::string argument(int value) { return std::to_string(value); }
	std::string argument(bool value) { return value ? "true" : "false"; }
	std::string argument(const char *text) { return text ? argument(std::string_view(text)) : "null"; }
	std::string argument(char *text) { return argument(static_cast<const char *>(text)); }
	std::string argument(std::string_view text); ///< as in JSON
	std::string argument(const std::string &text) { return argument(std::string_view(text)); }
	std::string argument(const void *object) { return name(object); }

	/// "eLabel#2"; "null" for none.
	std::string name(const void *object);

	FILE *file = nullptr;
	bool failed = false;
	int quiet = 0;
	std::unordered_map<const void *, Object> objects;
	std::map<std::string, int> counts; ///< per class
};

} // namespace desk

#endif
