#pragma once

/// What the values of a field are. It decides how they are edited, searched for and compared.
enum class FieldKind {
    Plain,  ///< shown only
    Choice, ///< the key of an entry: main folder, status, type
    Values, ///< one of some texts
    Text,
    Number,
    CheckBox,
    Date,
    Folder
};
