#include "plural_rule.h"

namespace desk
{

namespace
{

constexpr size_t longestRule = 1000; // real rules have 150 characters; each may nest a call

/// A recursive descent evaluator. Values are unsigned. It evaluates operands that C would skip, because they have no
/// side effects.
class Rule
{
	using N = unsigned long;

public:
	Rule(std::string_view text, N n) : left(text), number(n) {}

	std::optional<N> value()
	{
		const N result = choice();
		skipBlanks();
		if (!sound || !left.empty())
			return std::nullopt;
		return result;
	}

private:
	N choice()
	{
		const N condition = binary(0);
		if (!take("?"))
			return condition;
		const N yes = choice();
		sound = take(":") && sound;
		const N no = choice();
		return condition ? yes : no;
	}

	/// Evaluates binary operators of at least precedence `level`.
	N binary(int level)
	{
		static const struct
		{
			const char *sign;
			int level;
			N (*apply)(N, N);
		} operators[] = {
			{"||", 0, [](N a, N b) { return N(a || b); }},
			{"&&", 1, [](N a, N b) { return N(a && b); }},
			{"==", 2, [](N a, N b) { return N(a == b); }},
			{"!=", 2, [](N a, N b) { return N(a != b); }},
			{"<=", 3, [](N a, N b) { return N(a <= b); }},
			{">=", 3, [](N a, N b) { return N(a >= b); }},
			{"<", 3, [](N a, N b) { return N(a < b); }},
			{">", 3, [](N a, N b) { return N(a > b); }},
			{"+", 4, [](N a, N b) { return a + b; }},
			{"-", 4, [](N a, N b) { return a - b; }},
			{"*", 5, [](N a, N b) { return a * b; }},
			{"/", 5, [](N a, N b) { return b ? a / b : 0; }},
			{"%", 5, [](N a, N b) { return b ? a % b : 0; }},
		};
		N value = single();
		for (bool found = true; found && sound;) {
			found = false;
			for (const auto &each : operators)
				if (each.level >= level && take(each.sign)) {
					value = each.apply(value, binary(each.level + 1));
					found = true;
					break;
				}
		}
		return value;
	}

	N single()
	{
		if (take("!"))
			return !single();
		if (take("n"))
			return number;
		if (take("(")) {
			const N value = choice();
			sound = take(")") && sound;
			return value;
		}
		skipBlanks();
		if (left.empty() || !isDigit(left.front()))
			sound = false;
		N value = 0;
		for (; !left.empty() && isDigit(left.front()); left.remove_prefix(1))
			value = value * 10 + static_cast<N>(left.front() - '0');
		return value;
	}

	bool take(std::string_view sign)
	{
		skipBlanks();
		if (left.substr(0, sign.size()) != sign)
			return false;
		left.remove_prefix(sign.size());
		return true;
	}

	void skipBlanks()
	{
		while (!left.empty() && (left.front() == ' ' || left.front() == '\t'))
			left.remove_prefix(1);
	}

	static bool isDigit(char c) { return c >= '0' && c <= '9'; }

	std::string_view left; ///< the rest of the rule
	N number;
	bool sound = true;
};

} // namespace

std::optional<unsigned long> pluralForm(std::string_view rule, unsigned long n)
{
	if (rule.size() > longestRule)
		return std::nullopt;
	return Rule(rule, n).value();
}

} // namespace desk
