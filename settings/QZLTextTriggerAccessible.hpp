#pragma once

/// From now on assistive technologies meet triggers as buttons, and hot links as links, that can be pressed.
/// Repeatable.
void QZLMakeTextTriggersAccessible();
