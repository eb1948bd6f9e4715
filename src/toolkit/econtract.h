#ifndef VEXLO_ECONTRACT_H
#define VEXLO_ECONTRACT_H

// Describes the contract that a plugin was built against: sizes of classes, numbers of virtual operations, the signal
// layer. The host compares it with its own before it runs the plugin. econtract.cpp puts it into a plugin as an ELF
// note. A plugin may lack the note, and toolkit.h does not include this header.

#include "elistbox.h"
#include "eskin.h"
#include "ewindow.h"

#include <cstdint>

/// The described classes, bases before derived classes, because the host reports the first one that differs.
#define VEXLO_CONTRACT_CLASSES                                                                               \
	SigC::ObjectBase, SigC::Object, SigC::Signal0<void>, eString, eSkin, eWidget, eDecoWidget, eLabel,       \
		eButton, eWindow, eMessageBox, eListBoxBase, eListBoxEntry, eListBoxEntryText, eListBoxEntryMenu,    \
		eListBox<eListBoxEntryMenu>, eSetupWindow

/// A class with one more virtual operation: its place in the table is the number of operations before it.
template <class T> struct eOneMore : T
{
	/// The additional operation.
	virtual void oneMore() = 0;
};

/// The layout of a class.
template <class T> struct __attribute__((packed)) eShape
{
	uint32_t size = sizeof(T);                                 ///< in bytes
	void (eOneMore<T>::*operations)() = &eOneMore<T>::oneMore; ///< place in the table; needs no symbol
};

/// The shapes of several classes, without gaps.
template <class T, class... Others> struct __attribute__((packed)) eShapes
{
	eShape<T> first;           ///< of the first class
	eShapes<Others...> others; ///< of those that follow
};

/// The last class.
template <class T> struct __attribute__((packed)) eShapes<T>
{
	eShape<T> first; ///< of the last class
};

/// One side's contract.
struct __attribute__((packed)) eContract
{
	char layer[20] = VEXLO_SIGNAL_LAYER;    ///< whose signals and slots these are
	eShapes<VEXLO_CONTRACT_CLASSES> shapes; ///< see there
};

/// The ELF note.
struct eContractNote
{
	uint32_t nameSize = sizeof "Vexlo";        ///< without padding
	uint32_t contractSize = sizeof(eContract); ///< in bytes
	uint32_t type = 1;                         ///< the only one
	char name[8] = "Vexlo";                    ///< padded to a multiple of four
	eContract contract;                        ///< see there
};

#endif
