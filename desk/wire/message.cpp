#include "message.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <limits>
#include <type_traits>

namespace desk
{

namespace
{

using Json = nlohmann::ordered_json;

template <class Enum> constexpr Enum last{};
template <> constexpr Key last<Key> = Key::digit9;
template <> constexpr Part last<Part> = Part::thumb;
template <> constexpr Emphasis last<Emphasis> = Emphasis::dim;
template <> constexpr Face last<Face> = Face::prose;
template <> constexpr Align last<Align> = Align::end;

template <class T, class... Others> constexpr bool isOneOf = (std::is_same_v<T, Others> || ...);

/// Types that become one value.
template <class T> constexpr bool isValue =
	std::is_arithmetic_v<T> || std::is_enum_v<T> || isOneOf<T, std::string, Color>;

template <class T> constexpr bool isVector = false;
template <class T> constexpr bool isVector<std::vector<T>> = true;

/// The fields of each type, listed once for both directions.
template <class Io, class Thing> void values(Io &io, Thing &t)
{
	using T = std::remove_const_t<Thing>;
	if constexpr (isValue<T>)
		io.one(t);
	else if constexpr (isVector<T>)
		io.elements(t);
	else if constexpr (isOneOf<T, Rect>)
		io.pixels(t.x, t.y, t.w, t.h);
	else if constexpr (isOneOf<T, Fill>) {
		io(t.top, t.bottom, t.part);
		io.pixels(t.radius);
	} else if constexpr (isOneOf<T, WindowStyle>) {
		io(t.border, t.titleTop, t.titleBottom, t.titleText, t.client);
		io.pixels(t.radius);
	} else if constexpr (isOneOf<T, TextStyle>) {
		io(t.color, t.face, t.bold, t.align, t.emphasis, t.whole);
		io.pixels(t.rowHeight);
	} else if constexpr (isOneOf<T, DisplayList::FillItem>)
		io(t.area, t.fill);
	else if constexpr (isOneOf<T, DisplayList::WindowItem>)
		io(t.outer, t.client, t.title, t.style);
	else if constexpr (isOneOf<T, DisplayList::TextItem>)
		io(t.area, t.line, t.style);
	else if constexpr (isOneOf<T, DisplayList::KeyItem>)
		io(t.area, t.key, t.color);
	else if constexpr (isOneOf<T, DisplayList::Item>) {
		io(t.clip);
		io.alternative(t.what);
	} else if constexpr (isOneOf<T, DisplayList::Edit>)
		io(t.front, t.back, t.items);
	else if constexpr (isOneOf<T, Start>)
		io(t.plugin, t.root, t.served, t.contained, t.asIs, t.lang, t.catalogue, t.skin, t.rowHeight, t.draws,
		   t.describes, t.traces);
	else if constexpr (isOneOf<T, ConsoleModes>)
		io(t.name, t.display, t.keyboard);
	else if constexpr (isOneOf<T, Run>)
		io(t.again, t.console);
	else if constexpr (isOneOf<T, Press>)
		io(t.key, t.again);
	else if constexpr (isOneOf<T, Click>)
		io.pixels(t.x, t.y, t.upX, t.upY);
	else if constexpr (isOneOf<T, Failed>)
		io(t.status, t.why);
	else if constexpr (isOneOf<T, Frame>) {
		io(t.edit);
		io.json(t.windows);
		io(t.waits, t.question);
	} else if constexpr (isOneOf<T, Meaning>)
		io(t.keys);
	else if constexpr (isOneOf<T, Note>)
		io(t.line, t.urgent, t.mistake);
	else if constexpr (isOneOf<T, Call>)
		io(t.line, t.aside);
	else if constexpr (isOneOf<T, Harm>)
		io(t.done);
	else if constexpr (isOneOf<T, Returned>)
		io(t.result);
	else if constexpr (isOneOf<T, Crash::Place>)
		io(t.file, t.offset);
	else if constexpr (isOneOf<T, Crash>)
		io(t.signal, t.status, t.what, t.event, t.call, t.gone, t.stack);
	else
		static_assert(isOneOf<T, Load, Loaded, CommandEnded>, "every kind has its values");
}

/// Appends values to an array.
class Writer
{
public:
	template <class... Things> void operator()(const Things &...things) { (values(*this, things), ...); }

	template <class... Numbers> void pixels(const Numbers &...numbers) { (one(numbers), ...); }
	void json(const std::string &text) { one(text); }

	template <class Value> void one(const Value &value)
	{
		if constexpr (std::is_enum_v<Value>)
			array.emplace_back(static_cast<int>(value));
		else if constexpr (isOneOf<Value, Color>)
			array.emplace_back(value.r << 16 | value.g << 8 | value.b);
		else
			array.emplace_back(value);
	}

	template <class... Kinds> void alternative(const std::variant<Kinds...> &kinds)
	{
		array.emplace_back(kinds.index());
		std::visit([this](const auto &kind) { values(*this, kind); }, kinds);
	}

	/// Appends an array of all elements.
	template <class Thing> void elements(const std::vector<Thing> &things)
	{
		Writer writer;
		writer.array.reserve(20 * things.size());
		for (const Thing &thing : things)
			writer(thing);
		array.emplace_back(std::move(writer.array));
	}

	Json::array_t array;
};

/// Reads values. `good` becomes false at the first invalid one.
class Reader
{
public:
	explicit Reader(Json::array_t &from) : array(from) {}

	template <class... Things> void operator()(Things &...things) { (values(*this, things), ...); }

	template <class... Numbers> void pixels(Numbers &...numbers)
	{
		(one(numbers), ...);
		((numbers = bounded(numbers)), ...);
	}

	/// A JSON text or an empty one.
	void json(std::string &text)
	{
		one(text);
		good = good && (text.empty() || Json::accept(text));
	}

	template <class Value> void one(Value &value)
	{
		if constexpr (std::is_enum_v<Value>) {
			const auto place = number<unsigned>();
			good = good && place <= static_cast<unsigned>(last<Value>);
			value = good ? static_cast<Value>(place) : Value();
		} else if constexpr (isOneOf<Value, Color>) {
			const auto rgb = number<unsigned>();
			value = {static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8),
			         static_cast<uint8_t>(rgb)};
		} else if constexpr (isOneOf<Value, bool>) {
			const Json *json = next();
			good = json && json->is_boolean();
			value = good && json->get<bool>();
		} else if constexpr (isOneOf<Value, std::string>) {
			Json *json = next();
			good = json && json->is_string();
			if (good)
				value = std::move(json->template get_ref<std::string &>());
		} else
			value = number<Value>();
	}

	template <class... Kinds> void alternative(std::variant<Kinds...> &kinds)
	{
		const auto kind = number<size_t>();
		good = good && kind < sizeof...(Kinds);
		size_t place = 0;
		if (good)
			((place++ == kind ? values(*this, kinds.template emplace<Kinds>()) : void()), ...);
	}

	template <class Thing> void elements(std::vector<Thing> &things)
	{
		Json *json = next();
		if (!json || !json->is_array()) {
			good = false;
			return;
		}
		things.clear();
		Reader reader(json->get_ref<Json::array_t &>());
		while (reader.good && !reader.atEnd())
			reader(things.emplace_back());
		good = reader.good;
	}

	bool atEnd() const { return at == array.size(); }

	bool good = true;

private:
	Json *next()
	{
		good = good && !atEnd();
		return good ? &array[at++] : nullptr;
	}

	template <class Number> Number number()
	{
		const Json *json = next();
		good = json && json->is_number_integer();
		const int64_t n = good ? json->get<int64_t>() : 0;
		if constexpr (std::is_unsigned_v<Number>)
			good = good && n >= 0 && static_cast<uint64_t>(n) <= std::numeric_limits<Number>::max();
		else
			good = good && n >= std::numeric_limits<Number>::min() && n <= std::numeric_limits<Number>::max();
		return good ? static_cast<Number>(n) : Number();
	}

	Json::array_t &array;
	size_t at = 0;
};

/// Whether the bytes are one CBOR value of the kinds in messages, without deep nesting: the library's parser is
/// recursive.
bool isPlain(std::string_view bytes)
{
	constexpr size_t mostLevels = 16, mostValues = 1 << 20;
	enum Kind
	{
		positive,
		negative,
		blob,
		text,
		array,
		map,
		tag,
		simple,
	};
	std::vector<uint64_t> left; // remaining values at each level
	left.reserve(mostLevels);
	left.push_back(1);
	bool whole = false;
	for (size_t at = 0, count = 0; !left.empty();) {
		if (left.back() == 0) {
			left.pop_back();
			continue;
		}
		--left.back();
		if (at == bytes.size() || ++count > mostValues)
			return false;
		const auto head = static_cast<unsigned char>(bytes[at++]);
		const unsigned kind = head >> 5;
		uint64_t number = head & 31;
		if (number > 27)
			return false; // indefinite length
		if (number > 23 && kind != simple) {
			const size_t length = size_t{1} << (number - 24);
			number = 0;
			for (size_t i = 0; i < length; ++i, ++at) {
				if (at == bytes.size())
					return false;
				number = number << 8 | static_cast<unsigned char>(bytes[at]);
			}
		}
		const uint64_t rest = bytes.size() - at;
		if (kind == text) {
			if (number > rest)
				return false;
			at += static_cast<size_t>(number);
		} else if (kind == array || kind == map) {
			if (number > rest || left.size() == mostLevels)
				return false;
			left.push_back(kind == map ? 2 * number : number);
		} else if (kind == blob || kind == tag || (kind == simple && (number < 20 || number > 22)))
			return false; // a simple value other than false, true and null
		whole = at == bytes.size();
	}
	return whole;
}

template <class Message> std::string encoded(const Message &message)
{
	Writer writer;
	writer.alternative(message);
	std::string bytes;
	bytes.reserve(1024); // enough for most frames
	Json::to_cbor(Json(std::move(writer.array)), bytes);
	return bytes;
}

template <class Message> std::optional<Message> decoded(std::string_view bytes)
try {
	Json json;
	if (isPlain(bytes))
		json = Json::from_cbor(bytes.begin(), bytes.end(), true, false);
	if (!json.is_array())
		return std::nullopt;
	Reader reader(json.get_ref<Json::array_t &>());
	Message message;
	reader.alternative(message);
	return reader.good && reader.atEnd() ? std::optional(std::move(message)) : std::nullopt;
} catch (const std::exception &) {
	return std::nullopt;
}

} // namespace

std::string encode(const ToHost &message)
{
	return encoded(message);
}

std::string encode(const ToViewer &message)
{
	return encoded(message);
}

std::optional<ToHost> decodeToHost(std::string_view bytes)
{
	return decoded<ToHost>(bytes);
}

std::optional<ToViewer> decodeToViewer(std::string_view bytes)
{
	return decoded<ToViewer>(bytes);
}

} // namespace desk
