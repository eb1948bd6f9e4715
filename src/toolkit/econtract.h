#ifndef VEXLO_ECONTRACT_H
#define VEXLO_ECONTRACT_H

// What a plugin was built against, in a form that its host can compare with its own before it runs the
// plugin: sizes of classes, numbers of virtual operations, the signal layer. econtract.cpp puts it into a
// plugin as an ELF note; a plugin may lack it, and toolkit.h does not include this.

#include "elistbox.h"
#include "eskin.h"
#include "ewindow.h"

#include <cstdint>

/// The classes described, bases before what derives from them: the first one that differs is the reason.
#define VEXLO_CONTRACT_CLASSES                                                                               \
	SigC::ObjectBase, SigC::Object, SigC::Signal0<void>, eString, eSkin, eWidget, eDecoWidget, eLabel,       \
		eButton, eWindow, eMessageBox, eListBoxBase, eListBoxEntry, eListBoxEntryText, eListBoxEntryMenu,    \
		eListBox<eListBoxEntryMenu>, eSetupWindow

/// A class with one virtual operation more: its place in the table says how many there are before it.
template <class T> struct eOneMore : T
{
	/// The additional operation.
	virtual void oneMore() = 0;
};

/// A class as a compiler has laid it out.
template <class T> struct __attribute__((packed)) eShape
{
	uint32_t size = sizeof(T);                                 ///< in bytes
	void (eOneMore<T>::*operations)() = &eOneMore<T>::oneMore; ///< known without a table: no symbol is needed
};

/// The shapes of several classes, without gaps.
template <class T, class... Others> struct __attribute__((packed)) eShapes
{
	eShape<T> first;           ///< of the first class
	eShapes<Others...> others; ///< of those that follow
};

/// The last one.
template <class T> struct __attribute__((packed)) eShapes<T>
{
	eShape<T> first; ///< of the last class
};

/// The contract as one side knows it.
struct __attribute__((packed)) eContract
{
	char layer[20] = VEXLO_SIGNAL_LAYER;    ///< whose signals and slots these are
	eShapes<VEXLO_CONTRACT_CLASSES> shapes; ///< see there
};

/// The ELF note.
struct eContractNote
{
	uint32_t nameSize = sizeof "Vexlo";        ///< without what pads it
	uint32_t contractSize = sizeof(eContract); ///< in bytes
	uint32_t type = 1;                         ///< the only one
	char name[8] = "Vexlo";                    ///< padded to a multiple of four
	eContract contract;                        ///< see there
};

#endif
