#include "deco.h"
#include "desk.h"
#include "label.h"
#include "mistakes.h"
#include "state.h"
#include "trace.h"

#include <algorithm>

using desk::Desk;
using desk::Trace;

namespace
{

/// Pressing a button emits its signal.
class ButtonBehaviour : public desk::LabelBehaviour
{
public:
	bool press(eWidget &widget) override
	{
		Trace::get().emits(&widget, "selected");
		static_cast<eButton &>(widget).selected.emit();
		return true;
	}
};

} // namespace

namespace desk
{

void LabelBehaviour::draw(const eWidget &widget, gPainter &painter)
{
	const eWidget::State &state = eWidget::State::of(widget);
	const Skin &skin = Desk::get().skin();
	const bool focused = Desk::get().windows().focus() == &widget;
	const Rect area{painter.x, painter.y, state.width, state.height};

	if (const std::optional<Fill> &back =
	        focused && decoration->focused ? decoration->focused : decoration->background) {
		Fill fill = *back;
		const bool hasOneRow = oneLine || state.height < 2 * Desk::get().fontSize();
		fill.part = !hasOneRow ? Part::area
		            : oneLine  ? (focused ? Part::currentButton : Part::button)
		                       : (focused ? Part::currentLine : Part::line);
		painter.canvas.fill(area, fill);
	}

	TextStyle style;
	style.color = focused ? decoration->focusedText : decoration->text;
	style.face = face;
	style.align = align;
	style.bold = bold;
	style.whole = wraps;
	style.rowHeight = Desk::get().fontSize();
	style.emphasis = focused ? Emphasis::current : Emphasis::none;

	if (symbol) {
		const Color colors[] = {skin.keyRed, skin.keyGreen, skin.keyYellow, skin.keyBlue};
		const int height = std::min(style.rowHeight, state.height);
		painter.canvas.keySymbol(
			{area.x + decoration->padding + 4, area.y + (area.h - height) / 2, 24, height}, *symbol,
			colors[static_cast<int>(*symbol) - static_cast<int>(Key::red)]);
	}
	const Rect inner{area.x + left(), area.y, room(state), area.h};

	const std::string wrapped = wraps ? wrapText(state.text, inner.w, style.rowHeight) : std::string();
	const std::string_view text = wraps ? std::string_view(wrapped) : std::string_view(state.text);
	if (oneLine) {
		painter.canvas.text(inner, text, style);
		return;
	}
	// Draws only rows within the label and the screen.
	const int bottom = std::min(inner.bottom(), screenHeight);
	size_t start = 0;
	for (int y = inner.y; y < bottom && start < text.size(); y += style.rowHeight) {
		const size_t end = std::min(text.find('\n', start), text.size());
		if (y + style.rowHeight > 0)
			painter.canvas.text({inner.x, y, inner.w, style.rowHeight}, text.substr(start, end - start),
			                    style);
		start = end + 1;
	}
}

} // namespace desk

eDecoWidget::eDecoWidget(eWidget *parent, int takefocus, const char *name)
	: eWidget(Trace::Quiet().with(parent), takefocus),
	  deco(new Deco{name ? name : "", &Desk::get().skin().decoration(name ? name : "")})
{
	Trace::get().constructed(this, "eDecoWidget", parent, takefocus, name);
	desk::checkDecoration(*this, name);
}

eDecoWidget::~eDecoWidget()
{
	delete deco;
}

void eDecoWidget::loadDeco()
{
	Trace::get().call(this, "loadDeco");
	deco->decoration = &Desk::get().skin().decoration(deco->name);
}

int eDecoWidget::eventFilter(const eWidgetEvent &event)
{
	return eWidget::eventFilter(event);
}

int eDecoWidget::setProperty(const eString &name, const eString &value)
{
	return eWidget::setProperty(name, value);
}

eLabel::eLabel(eWidget *parent, int flags, int takefocus, const char *name)
	: eDecoWidget(Trace::Quiet().with(parent), takefocus, name)
{
	auto behaviour = std::make_unique<desk::LabelBehaviour>();
	behaviour->decoration = deco->decoration;
	state->behaviour = std::move(behaviour);
	Trace::get().constructed(this, "eLabel", parent, flags, takefocus, name);
	desk::checkDecoration(*this, name);
}

eLabel::~eLabel() = default;

void eLabel::setShortcutPixmap(const eString &key)
{
	Trace::get().call(this, "setShortcutPixmap", key);
	static_cast<desk::LabelBehaviour &>(*state->behaviour).symbol = desk::colourNamed(key);
	desk::checkColour(*this, "setShortcutPixmap", key);
}

eButton::eButton(eWidget *parent, eLabel *description, int takefocus, const char *name)
	: eLabel(Trace::Quiet().with(parent), 0, takefocus, name)
{
	auto behaviour = std::make_unique<ButtonBehaviour>();
	behaviour->makeButton(*deco->decoration);
	state->behaviour = std::move(behaviour);
	Trace::get().constructed(this, "eButton", parent, description, takefocus, name);
	desk::checkDecoration(*this, name);
}

eButton::~eButton() = default;
