#ifndef VEXLO_ELISTBOX_H
#define VEXLO_ELISTBOX_H

#include "ewindow.h"

#include <cstdint>

#pragma GCC visibility push(default)

class eListBoxEntry;

/// A scrolling list of entries, one of which is the current one.
///
/// Ownership: the list box deletes the entries that it holds when it is destroyed. The host decides whether it
/// deletes their keys as well.
class eListBoxBase : public eDecoWidget
{
public:
	/// `description` explains the list, null for none, not owned; `entryHeight` in pixels.
	eListBoxBase(eWidget *parent, const eWidget *description, int takefocus, int entryHeight,
	             const char *deco);
	~eListBoxBase() override;

	/// Options of the host's; the plugin's lists all use 4.
	void setFlags(int flags);

	/// Adds an entry, at the end unless `atTop`. `makeCurrent` moves the selection to it, without a report. An
	/// entry's constructor may call it: the list box only keeps the pointer. Null is ignored.
	void append(eListBoxEntry *entry, bool makeCurrent, bool atTop);

	/// Removes an entry without deleting it; from then on it belongs to the caller. An entry that is not in the list
	/// is no error. `fromDestruction` is the host's, false here.
	void remove(eListBoxEntry *entry, bool fromDestruction);

	struct List;

protected:
	void gotFocus() override;
	void lostFocus() override;
	void recalcClientRect() override;
	int eventHandler(const eWidgetEvent &event) override;
	void redrawWidget(gPainter *target, const eRect &area) override;
	int setProperty(const eString &name, const eString &value) override;

	/// The viewer confirms `entry`; null: the viewer leaves the list without one.
	virtual void SendSelected(eListBoxEntry *entry) = 0;
	/// The selection moves to `entry`, by a key or because the current entry was removed; null when that was the last
	/// one.
	virtual void SendSelChanged(eListBoxEntry *entry) = 0;

	List *list; ///< the host's, never null
};

/// One line of a list box.
///
/// Everything except drawing is inline, and thus part of the plugin.
class eListBoxEntry : public virtual SigC::Object
{
public:
	/// Appends the entry to `box`, which then owns it, unless `box` is null.
	explicit eListBoxEntry(eListBoxBase *box, const eString &help = eString(), int attribute = 0)
		: listbox(box), helptext(help.empty() ? eString(" ") : help), attr(attribute)
	{
		if (listbox)
			listbox->append(this, false, false);
	}
	eListBoxEntry(const eListBoxEntry &) = delete;
	eListBoxEntry &operator=(const eListBoxEntry &) = delete;

	virtual ~eListBoxEntry()
	{
		if (listbox)
			listbox->remove(this, false);
	}

	/// The order of entries; by default there is none.
	virtual bool operator<(const eListBoxEntry &) const { return false; }

	/// Draws the entry into `area`: background and text colour of the current entry, then of the others. `current` is
	/// not 0 for the current entry.
	virtual void redraw(gPainter *target, const eRect &area, gColor currentBack, gColor currentText,
	                    gColor back, gColor text, int current) = 0;

	/// The help that the list's window shows for the entry; never empty.
	const eString &getHelpText() const { return helptext; }

protected:
	// A list box that deletes an entry sets this to null first, so that the entry does not call back.
	friend class eListBoxBase;

	eListBoxBase *listbox; ///< null: the entry is in no list
	eString helptext;      ///< a blank if the entry was given none
	int attr;              ///< the host's; 3 for every text entry
};

/// A line of text with an optional key.
class eListBoxEntryText : public eListBoxEntry
{
public:
	/// How keys order the entries.
	enum
	{
		keyAddress = 0, ///< as addresses
		keyIgnored = 1, ///< ignored: the texts decide
	};

	/// Copies `label`; null counts as empty. `data` is the key, null for none; the entry neither reads nor frees it.
	/// A host may free keys with their list box, and then assumes an eString made with `new`.
	explicit eListBoxEntryText(eListBoxBase *box, const char *label = nullptr, void *data = nullptr,
	                           const eString &help = eString())
		: eListBoxEntry(box, help, 3), text(label ? label : ""), key(data)
	{}

	/// By the keys' addresses unless the key type says otherwise, then by the bytes of the text.
	bool operator<(const eListBoxEntry &entry) const override
	{
		const eListBoxEntryText &other = static_cast<const eListBoxEntryText &>(entry);
		if (key != other.key && keytype != keyIgnored)
			return reinterpret_cast<uintptr_t>(key) < reinterpret_cast<uintptr_t>(other.key);
		// Unsigned bytes over the shorter length, then the shorter text first.
		return text < other.text;
	}

	void redraw(gPainter *target, const eRect &area, gColor currentBack, gColor currentText, gColor back,
	            gColor text, int current) override;

	/// Height in pixels of one text entry in the active skin.
	static int getEntryHeight();

	const eString &getText() const { return text; } ///< what the entry shows
	void *getKey() const { return key; }            ///< null: none; for the owner, see the constructor
	int getKeyType() const { return keytype; }      ///< keyAddress or keyIgnored

protected:
	eString text;             ///< see getText()
	void *key;                ///< see getKey()
	int keytype = keyAddress; ///< see getKeyType()
	int align = 0;            ///< the host's
	int precolor = 0;         ///< the host's
};

/// A list box whose entries are of type T.
template <class T> class eListBox : public eListBoxBase
{
public:
	/// As eListBoxBase, with usual defaults.
	explicit eListBox(eWidget *parent, const eWidget *description = nullptr, int takefocus = 1,
	                  int entryHeight = eListBoxEntryText::getEntryHeight(),
	                  const char *decoration = "eListBox")
		: eListBoxBase(parent, description, takefocus, entryHeight, decoration)
	{}

	/// The viewer confirms an entry; null: the viewer leaves the list.
	SigC::Signal1<void, T *> selected;
	/// The selection moves.
	SigC::Signal1<void, T *> selchanged;

protected:
	void SendSelected(eListBoxEntry *entry) override { selected.emit(static_cast<T *>(entry)); }
	void SendSelChanged(eListBoxEntry *entry) override { selchanged.emit(static_cast<T *>(entry)); }
};

/// A menu line with a signal of its own for being chosen.
class eListBoxEntryMenu : public eListBoxEntryText
{
public:
	/// As eListBoxEntryText, without a key. With `box` null the entry is in no list and cannot be chosen.
	eListBoxEntryMenu(eListBox<eListBoxEntryMenu> *box, const char *label, const eString &help = eString())
		: eListBoxEntryText(box, label, nullptr, help)
	{
		if (box)
			box->selected.connect(SigC::slot(*this, &eListBoxEntryMenu::chosen));
	}

	/// The list box reports a choice to all its entries; only the chosen one passes it on.
	void LBSelected(eListBoxEntry *entry)
	{
		if (entry == this)
			selected.emit();
	}

	/// Emitted when the viewer chooses this line.
	SigC::Signal0<void> selected;

private:
	// A slot of the 1.2 library must take exactly the type that its signal passes.
	void chosen(eListBoxEntryMenu *entry) { LBSelected(entry); }
};

/// A window that holds one list box.
template <class T> class eListBoxWindow : public eWindow
{
public:
	/// Hidden and without a size; the derived class sets both.
	explicit eListBoxWindow(int takefocus = 0) : eWindow(takefocus), list(this) {}
	~eListBoxWindow() override = default;

	eListBox<T> list; ///< a member, and also a child of the window
};

/// A menu: a window of `rows` list rows, `width` pixels wide, with the help of the current entry below.
/// The host's event handling ends its exec() when the viewer leaves it.
class eSetupWindow : public eListBoxWindow<eListBoxEntryMenu>
{
public:
	/// `title` is copied; null counts as empty.
	eSetupWindow(const char *title, int rows, int width);
	~eSetupWindow() override;

protected:
	int eventHandler(const eWidgetEvent &event) override;
};

#pragma GCC visibility pop

#endif
