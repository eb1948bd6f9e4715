#ifndef VEXLO_EWINDOW_H
#define VEXLO_EWINDOW_H

#include "ewidget.h"

#pragma GCC visibility push(default)

/// A top-level window with a border and a title, hidden until show(). Its exec() ends as rejected when the viewer
/// leaves it.
class eWindow : public eWidget
{
public:
	/// `takefocus` 1: the window can have the focus when no child has it.
	explicit eWindow(int takefocus = 0);
	~eWindow() override;

protected:
	void willShow() override;
	void willHide() override;
	void recalcClientRect() override;
	int eventHandler(const eWidgetEvent &event) override;
	void redrawWidget(gPainter *target, const eRect &area) override;
	void eraseBackground(gPainter *target, const eRect &area) override;
};

/// A question with its answers. Shown, run and hidden like any window; its exec() returns the answer.
class eMessageBox : public eWindow
{
public:
	/// The answers: bits of `flags`, values of `preset`, results of exec().
	enum
	{
		yes = 4,
		no = 8,
	};

	/// Copies `text`, the question, and `caption`, the title. `flags`: the offered answers and, in higher bits, an
	/// icon. `preset`: the answer that has the focus first. `last` is the host's, 0 here. exec() returns the chosen
	/// answer, or -1 when the viewer leaves the box, the only way out without answers.
	eMessageBox(eString text, eString caption, int flags, int preset, int last);
	~eMessageBox() override;
};

#pragma GCC visibility pop

#endif
