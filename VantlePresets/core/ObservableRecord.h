// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QObject>

#include <utility>

namespace vantle {

/// A record whose fields a user edits and views observe.
///
/// Every observable field `name` is a Qt property with `name()`, `setName(value)` and the signal
/// `nameChanged(value)`. An assignment first emits objectWillChange(), then stores the value, then emits
/// the field's signal with the value that was stored. Equal values are announced too: an observer that
/// wants changes only compares for itself. Decoding stores without announcing, as nobody observes yet.
///
/// Records are held by std::shared_ptr and have no QObject parent. They belong to one thread, for a
/// listed record the main thread; one that was decoded elsewhere is moved there first. A slot must not
/// drop the last reference to the record that is calling it.
class VANTLE_PRESETS_EXPORT ObservableRecord : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ObservableRecord)

public:
    ~ObservableRecord() override;

Q_SIGNALS:
    /// Comes before any observable field of this record changes, while the old value still stands.
    void objectWillChange();

protected:
    ObservableRecord();

    /// The one way in which a setter stores a value. The copy keeps what is stored and announced the same
    /// when a slot changes the caller's value or assigns the field again.
    template <class T, class Signal>
    void assign(T &field, const T &value, Signal changed)
    {
        const T stored = value;
        Q_EMIT objectWillChange();
        field = stored;
        using Record = typename QtPrivate::FunctionPointer<Signal>::Object;
        Q_EMIT(static_cast<Record *>(this)->*changed)(stored);
    }
};

} // namespace vantle
