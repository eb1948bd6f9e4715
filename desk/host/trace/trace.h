#ifndef DESK_TRACE_TRACE_H
#define DESK_TRACE_TRACE_H

#include <array>
#include <charconv>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace desk
{

/// The plugin's calls to its host in order, one line each.
///
/// An object is named by the constructed class of the host and numbered per class in order of appearance: "eLabel#2".
/// The plugin's own code constructs a list's entry, which appears when it is appended and is always called
/// "eListBoxEntry".
class Trace
{
public:
	using Reader = std::function<void(const std::string &line)>;

	static Trace &get();

	/// Starts again: gives each line to `reader`, and lines between calls to `asides`.
	void start(Reader reader, Reader asides = nullptr);

	/// Starts again: only keeps the last line, with long strings cut and entries not numbered.
	void startRemembering();

	void stop();

	const std::string &last() const { return text; }

	/// Called for each key that the plugin gets.
	void pressed(const char *name) { event = key = std::string("key ") + name; }

	/// Called before the host emits a signal: "eListBoxBase#1.selected(eListBoxEntry#3)". Does not number objects.
	template <class... Objects>
	void emits(const void *object, const char *signal, const Objects *...arguments)
	{
		if (on())
			emitted(nameOf(object) + '.' + signal + '(' + (std::string() + ... + nameOf(arguments)) + ')');
	}

	/// No key was pressed so far.
	void forgetEvent() { event = key = ""; }

	/// The last key, and the last signal since: "key ok, eButton#1.selected()".
	const std::string &lastEvent() const { return event; }

	/// Gives a line to `asides`.
	void aside(const std::string &line)
	{
		if (on() && asides)
			asides(line);
	}

	/// The object's name in lines: "eLabel#2", "eListBoxEntry" or "null".
	std::string nameOf(const void *object) const;

	/// The name of a destroyed object at this address, destroyed by the plugin or by the host; null if unknown.
	const char *nameOfGone(uintptr_t address, bool byHost) const;

	/// Whether calls are traced now.
	bool on() const { return started && quiet == 0; }

	/// Whether the host works for itself now.
	bool isQuiet() const { return quiet > 0; }

	/// While one exists, the host works for itself and nothing is traced.
	class Quiet
	{
	public:
		Quiet() { ++get().quiet; }
		~Quiet() { --get().quiet; }
		Quiet(const Quiet &) = delete;
		Quiet &operator=(const Quiet &) = delete;

		/// `Base(Trace::Quiet().with(argument))` keeps a base class's constructor out of the trace.
		template <class T> T with(T argument) const { return argument; }
	};

	/// A constructor: "eLabel#2 = eLabel(eWindow#1, 0, 0, "eLabel")". Derived classes keep the constructors of their
	/// bases out of the trace.
	template <class... Args> void constructed(const void *object, const char *type, const Args &...args)
	{
		if (!started)
			return;
		objects[object] = {type, 0, quiet != 0};
		write([&] {
			argument(object);
			put(" = ");
			put(type);
			list(args...);
		});
	}

	/// A destructor: "eLabel#2.~eLabel()". Nothing for an object that the host made for itself or deletes.
	void destroyed(const void *object);
	void disposes(const void *object);

	/// Forgets an object without a line; another one at its address is a new object.
	void forget(const void *object)
	{
		if (reader)
			objects.erase(object);
	}

	/// An operation: "eLabel#2.move(5, 30)".
	template <class... Args> void call(const void *object, const char *operation, const Args &...args)
	{
		write([&] {
			argument(object); // numbers the object before the arguments
			put(".");
			put(operation);
			list(args...);
		});
	}

	/// The end of a call whose begin was traced: "eWindow#1.exec() = 0".
	template <class Result> void returned(const void *object, const char *operation, const Result &result)
	{
		write([&] {
			argument(object);
			put(".");
			put(operation);
			put("() = ");
			argument(result);
		});
	}

	/// A function: "eDebug("close file")".
	template <class... Args> void function(const char *what, const Args &...args)
	{
		write([&] {
			put(what);
			list(args...);
		});
	}

	/// A function with its result: "eSkin.queryValue("fontsize", 20) = 20".
	template <class Result, class... Args>
	void result(const Result &value, const char *what, const Args &...args)
	{
		write([&] {
			put(what);
			list(args...);
			put(" = ");
			argument(value);
		});
	}

	/// A function with its result as words: "fopen("/proc/mtd", "r") = null".
	template <class... Args> void resultInWords(const char *words, const char *what, const Args &...args)
	{
		result(Words{words}, what, args...);
	}

	/// Any other line.
	void line(std::string_view whole)
	{
		write([&] { put(whole); });
	}

private:
	/// Text that needs no quotes.
	struct Words
	{
		const char *text;
	};

	struct Object
	{
		const char *type;    ///< a literal
		int number = 0;      ///< 0: not numbered yet
		bool byHost = false; ///< the host destroys it
	};

	/// Gives the line that `parts` puts together to the reader.
	template <class Parts> void write(Parts parts)
	{
		if (!on())
			return;
		text.clear();
		parts();
		if (reader)
			reader(text);
	}

	void put(std::string_view words) { text += words; }

	template <class... Args> void list(const Args &...args)
	{
		text += '(';
		[[maybe_unused]] const char *separator = "";
		((put(separator), argument(args), separator = ", "), ...); // from left to right
		text += ')';
	}

	void argument(int value)
	{
		char digits[16];
		text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
	}
	void argument(const Words &words) { put(words.text); }
	void argument(bool value) { put(value ? "true" : "false"); }
	void argument(const char *value)
	{
		if (value)
			argument(std::string_view(value));
		else
			put("null");
	}
	void argument(char *value) { argument(static_cast<const char *>(value)); }
	void argument(std::string_view value); ///< as in JSON
	void argument(const std::string &value) { argument(std::string_view(value)); }
	void argument(const void *object); ///< "eLabel#2"; "null" for none

	void emitted(const std::string &line);

	bool started = false;
	Reader reader, asides;
	int quiet = 0;
	std::string text;
	std::string key, event;
	std::unordered_map<const void *, Object> objects;
	std::map<std::string, int> counts; ///< per class

	struct Gone
	{
		const void *object = nullptr;
		bool byHost = false;
		char name[48] = ""; ///< not on the heap, which may be damaged
	};
	std::array<Gone, 64> gone; ///< a ring of the latest ones
	size_t nextGone = 0;
};

} // namespace desk

#endif
