#ifndef DESK_TOOLKIT_DECO_H
#define DESK_TOOLKIT_DECO_H

#include "ewidget.h"
#include "skin.h"

#include <string>

/// What the host keeps of a decorated widget.
struct eDecoWidget::Deco
{
	std::string name;                   ///< empty: none
	const desk::Decoration *decoration; ///< the skin's, for as long as the skin is active
};

#endif
