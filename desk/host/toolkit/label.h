#ifndef DESK_TOOLKIT_LABEL_H
#define DESK_TOOLKIT_LABEL_H

#include "deco.h"
#include "state.h"
#include "visible_text.h"

#include <optional>
#include <string>

namespace desk
{

/// Draws a label; a button changes parts of it.
class LabelBehaviour : public Behaviour
{
public:
	void draw(const eWidget &widget, gPainter &painter) override;

	/// Draws like a button: one line in the middle.
	void makeButton(const Decoration &given)
	{
		decoration = &given;
		face = Face::prose;
		align = Align::centre;
		oneLine = true;
		bold = true;
	}

	/// Pixels of the widget's width available to text, from `left`.
	int room(const eWidget::State &state) const { return state.width - left() - right(); }
	int left() const { return decoration->padding + (symbol ? 32 : 0); }

	const Decoration *decoration = nullptr;
	std::optional<Key> symbol;
	Face face = Face::columns;
	Align align = Align::start;
	bool oneLine = false;
	bool bold = false;
	bool wraps = false; ///< breaks long lines instead of cutting them off

private:
	// Text aligned at the start may extend to the right edge.
	int right() const { return align == Align::start ? 0 : decoration->padding; }
};

} // namespace desk

#endif
