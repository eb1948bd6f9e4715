#ifndef DESK_TOOLKIT_DECO_H
#define DESK_TOOLKIT_DECO_H

#include "ewidget.h"
#include "skin.h"

#include <string>

/// The host's data of a decorated widget.
struct eDecoWidget::Deco
{
	std::string name;                   ///< empty: none
	const desk::Decoration *decoration; ///< of the skin, valid while the skin is active
};

#endif
