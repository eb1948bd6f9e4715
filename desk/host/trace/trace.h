#ifndef DESK_RECORD_TRACE_H
#define DESK_RECORD_TRACE_H

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

/// Every call that the plugin makes to its host, one line each, in order.
///
/// Objects are named by the host's class that was constructed and counted per class, as they first
/// appear in a line: "eLabel#2". A list's entry is constructed by the plugin's own code and appears
/// when it is appended; whatever its class, it is an "eListBoxEntry".
class Trace
{
public:
	using Reader = std::function<void(const std::string &line)>;

	static Trace &get();

	/// Begins anew: hands each line to `reader` as it comes about, and to `asides` what is read between calls.
	void start(Reader reader, Reader asides = nullptr);

	/// Begins anew: only keeps the last line, in which long strings are cut and entries of lists have no numbers.
	void startRemembering();

	void stop();

	/// The line of the last call.
	const std::string &last() const { return text; }

	/// A key was pressed that the plugin is to deal with.
	void pressed(const char *name) { event = key = std::string("key ") + name; }

	/// The host is about to emit a signal of an object: "eListBoxBase#1.selected(eListBoxEntry#3)". That numbers nothing.
	template <class... Objects>
	void emits(const void *object, const char *signal, const Objects *...arguments)
	{
		if (on())
			emitted(nameOf(object) + '.' + signal + '(' + (std::string() + ... + nameOf(arguments)) + ')');
	}

	/// The last key, and the last signal that was emitted after it: "key ok, eButton#1.selected()".
	const std::string &lastEvent() const { return event; }

	/// Something to be read between the calls.
	void aside(const std::string &line)
	{
		if (on() && asides)
			asides(line);
	}

	/// What the lines call the object: "eLabel#2", "eListBoxEntry" or "null".
	std::string nameOf(const void *object) const;

	/// What an object was called that was at this address and is no more, by the plugin's doing or by the host's; null:
	/// nothing is known of any.
	const char *nameOfGone(uintptr_t address, bool byHost) const;

	/// Whether the plugin's calls are written down just now.
	bool on() const { return started && quiet == 0; }

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
		if (!started)
			return;
		objects[object] = {type, 0, quiet != 0};
		if (!on())
			return;
		begin();
		argument(object);
		put(" = ");
		put(type);
		list(args...);
		end();
	}

	/// The destructor that all have in common: "eLabel#2.~eLabel()". Nothing is written about an object
	/// that the host has constructed for itself or disposes of.
	void destroyed(const void *object);
	void disposes(const void *object);

	/// An object is gone without a line; another one at its address is a new one.
	void forget(const void *object)
	{
		if (reader)
			objects.erase(object);
	}

	/// An operation: "eLabel#2.move(5, 30)".
	template <class... Args> void call(const void *object, const char *operation, const Args &...args)
	{
		if (!on())
			return;
		begin();
		argument(object); // numbered before what is among the arguments
		put(".");
		put(operation);
		list(args...);
		end();
	}

	/// The end of one that was written as it began: "eWindow#1.exec() = 0".
	template <class Result> void returned(const void *object, const char *operation, const Result &result)
	{
		if (!on())
			return;
		begin();
		argument(object);
		put(".");
		put(operation);
		put("() = ");
		argument(result);
		end();
	}

	/// A function that belongs to no object: "eDebug("close file")".
	template <class... Args> void function(const char *what, const Args &...args)
	{
		if (!on())
			return;
		begin();
		put(what);
		list(args...);
		end();
	}

	/// The same with what it returned: "eSkin.queryValue("fontsize", 20) = 20".
	template <class Result, class... Args>
	void result(const Result &value, const char *what, const Args &...args)
	{
		if (!on())
			return;
		begin();
		put(what);
		list(args...);
		put(" = ");
		argument(value);
		end();
	}

	/// The same with a result in words: "fopen("/proc/mtd", "r") = null".
	template <class... Args> void resultInWords(const char *words, const char *what, const Args &...args)
	{
		result(Words{words}, what, args...);
	}

	/// A line of any other form.
	void line(std::string_view whole)
	{
		if (!on())
			return;
		begin();
		put(whole);
		end();
	}

private:
	/// Written as they are.
	struct Words
	{
		const char *text;
	};

	struct Object
	{
		const char *type;    ///< a literal
		int number = 0;      ///< 0: it has not appeared yet
		bool byHost = false; ///< its end is not the plugin's doing
	};

	void begin() { text.clear(); }
	void end()
	{
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
	std::string text; ///< the last line
	std::string key, event;
	std::unordered_map<const void *, Object> objects;
	std::map<std::string, int> counts; ///< per class

	struct Gone
	{
		const void *object = nullptr;
		bool byHost = false;
		char name[48] = ""; ///< here, whatever becomes of the heap
	};
	std::array<Gone, 64> gone; ///< the last ones
	size_t nextGone = 0;
};

} // namespace desk

#endif
