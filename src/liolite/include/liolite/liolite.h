#pragma once

// Every public header of the toolkit.
#include <liolite/vdrawhelper.h>
#include <liolite/vliteabstracteditor.h>
#include <liolite/vlitebutton.h>
#include <liolite/vlitecheckbox.h>
#include <liolite/vliteclickablelabel.h>
#include <liolite/vlitecombobox.h>
#include <liolite/vlitecontentdlg.h>
#include <liolite/vlitelabel.h>
#include <liolite/vlitelineeditor.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitethemenotifier.h>
#include <liolite/vlitewidget.h>
#include <liolite/vseparatorline.h>
#include <liolite/yrtdirs.h>
#include <liolite/yrtproduct.h>
