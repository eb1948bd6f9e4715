#ifndef VEXLO_SCANLOG_ENTRIES_H
#define VEXLO_SCANLOG_ENTRIES_H

#include <cstddef>
#include <cstring>
#include <iterator>
#include <string>

/// One row of the scan log's list.
struct ScanLogEntry
{
	std::string text; ///< line number from 0, a blank, and the line or a piece of it
	std::string line; ///< the whole line as read from the log, line end included
};

/// Rows in order. A log can be large: the rows' bytes lie behind one another in blocks, so that what grows is never
/// copied, and what has been taken from the front leaves memory that serves for other things at once.
class ScanLogEntries
{
	struct Block
	{
		Block *next;
		std::size_t used;           ///< of the bytes
		char bytes[16 * 1024 - 64]; ///< of each row its text and its line, a NUL behind each
	};

public:
	ScanLogEntries() = default;
	ScanLogEntries(ScanLogEntries &&from) noexcept : first(from.first), last(from.last)
	{
		from.first = from.last = nullptr;
	}
	ScanLogEntries(const ScanLogEntries &) = delete;
	ScanLogEntries &operator=(const ScanLogEntries &) = delete;
	~ScanLogEntries();

	/// Of all rows, from the first on, each made from the bytes when it is asked for.
	class const_iterator
	{
	public:
		using iterator_category = std::input_iterator_tag;
		using value_type = ScanLogEntry;
		using difference_type = std::ptrdiff_t;
		using pointer = const ScanLogEntry *;
		using reference = ScanLogEntry;

		explicit const_iterator(const Block *start) : block(start), at(start ? start->bytes : nullptr) {}
		reference operator*() const
		{
			ScanLogEntry row;
			readRow(at, row);
			return row;
		}
		const_iterator &operator++()
		{
			at = skipRow(at);
			if (at == block->bytes + block->used) {
				block = block->next;
				at = block ? block->bytes : nullptr;
			}
			return *this;
		}
		bool operator==(const const_iterator &o) const { return at == o.at; }
		bool operator!=(const const_iterator &o) const { return at != o.at; }

	private:
		const Block *block;
		const char *at;
	};

	const_iterator begin() const { return const_iterator(first); }
	const_iterator end() const { return const_iterator(nullptr); }
	bool empty() const { return !first; }
	/// Counts them.
	std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }

	/// Adds a row of these lengths in bytes, together not more than a block has room for; neither holds a NUL.
	void append(const char *text, std::size_t textLength, const char *line, std::size_t lineLength);

	/// Takes all rows out, from the first on, and calls `use` with each.
	template <class Use> void takeAll(const Use &use)
	{
		ScanLogEntry row;
		for (; first; dropFirst())
			for (const char *at = first->bytes; at != first->bytes + first->used;) {
				at = readRow(at, row);
				use(row);
			}
		last = nullptr;
	}

private:
	/// Returns where the row ends that starts there.
	static const char *readRow(const char *at, ScanLogEntry &row)
	{
		row.text = at;
		at += row.text.size() + 1;
		row.line = at;
		return at + row.line.size() + 1;
	}
	static const char *skipRow(const char *at)
	{
		at += std::strlen(at) + 1;
		return at + std::strlen(at) + 1;
	}
	void dropFirst();

	Block *first = nullptr, *last = nullptr;
};

#endif
