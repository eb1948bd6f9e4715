#ifndef VEXLO_SCANLOG_ENTRIES_H
#define VEXLO_SCANLOG_ENTRIES_H

#include <cstddef>
#include <iterator>
#include <string>

/// One row of the scan log's list.
struct ScanLogEntry
{
	std::string text; ///< line number from 0, a blank, and the line or a piece of it
	std::string line; ///< the whole line as read from the log, line end included
};

/// Rows in order, in blocks: a log can be large. What grows is never copied, and what has been taken from the
/// front leaves whole blocks of memory, which serve for other things at once.
class ScanLogEntries
{
	static constexpr int blockSize = 8; // rows

	struct Block
	{
		Block *next = nullptr;
		int used = 0;
		ScanLogEntry rows[blockSize];
	};

public:
	ScanLogEntries() = default;
	ScanLogEntries(ScanLogEntries &&from) noexcept : first(from.first), last(from.last)
	{
		from.first = from.last = nullptr;
	}
	ScanLogEntries(const ScanLogEntries &) = delete;
	ScanLogEntries &operator=(const ScanLogEntries &) = delete;
	~ScanLogEntries()
	{
		takeAll([](const ScanLogEntry &) {});
	}

	/// Of all rows, from the first on.
	class const_iterator
	{
	public:
		using iterator_category = std::forward_iterator_tag;
		using value_type = ScanLogEntry;
		using difference_type = std::ptrdiff_t;
		using pointer = const ScanLogEntry *;
		using reference = const ScanLogEntry &;

		explicit const_iterator(const Block *at) : block(at) {}
		reference operator*() const { return block->rows[row]; }
		pointer operator->() const { return &**this; }
		const_iterator &operator++()
		{
			if (++row == block->used) {
				block = block->next;
				row = 0;
			}
			return *this;
		}
		bool operator==(const const_iterator &o) const { return block == o.block && row == o.row; }
		bool operator!=(const const_iterator &o) const { return !(*this == o); }

	private:
		const Block *block;
		int row = 0;
	};

	const_iterator begin() const { return const_iterator(first); }
	const_iterator end() const { return const_iterator(nullptr); }
	bool empty() const { return !first; }
	std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }

	/// A new last row, empty.
	ScanLogEntry &append()
	{
		if (!last || last->used == blockSize) {
			Block *const fresh = new Block;
			(last ? last->next : first) = fresh;
			last = fresh;
		}
		return last->rows[last->used++];
	}

	/// Takes all rows out, from the first on, and calls `use` with each.
	template <class Use> void takeAll(const Use &use)
	{
		while (Block *const taken = first) {
			for (int row = 0; row < taken->used; ++row)
				use(taken->rows[row]);
			first = taken->next;
			delete taken;
		}
		last = nullptr;
	}

private:
	Block *first = nullptr, *last = nullptr;
};

#endif
