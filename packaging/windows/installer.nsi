; Installs the stand-in host, the module and all that belongs to them for one user, without administrator rights.
;
;   SETUP.exe                        with windows
;   SETUP.exe /S [/D=C:\some path]   without; /D comes last and takes no quotation marks
;   Uninstall.exe [/S]
;
; Both end with 2 where something couldn't be done, with 1 where a user gave it up. make_packages defines VERSION, FOLDER
; with the lists of files, PRESSED, SIZE in KB, OUTPUT, and DESKTOP where they hold lvxhost-desktop.exe.
Target amd64-unicode
SetCompressor /SOLID ${PRESSED}
ManifestDPIAware true
RequestExecutionLevel user

!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh

!define NAME "LVX_MirelReport"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
; A type of its own, which .xml may be opened with. The type that .xml has stays what it is.
!define TYPE "${NAME}.LandXML"

Name "${NAME} ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\${NAME}"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
BrandingText " "
VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 "ProductName" "${NAME}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "FileDescription" "Installs ${NAME}"
VIAddVersionKey /LANG=0 "LegalCopyright" "The ${NAME} authors"

!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\README.md"
!define MUI_FINISHPAGE_SHOWREADME_NOTCHECKED
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "German"

LangString isInUse ${LANG_ENGLISH} "lvxhost is running or its files can't be written. Close it, then try again:$\r$\n$INSTDIR"
LangString isInUse ${LANG_GERMAN} "lvxhost läuft, oder seine Dateien lassen sich nicht schreiben. Bitte schließen und noch einmal versuchen:$\r$\n$INSTDIR"
LangString notWhole ${LANG_ENGLISH} "Some files couldn't be written. The installation isn't whole:$\r$\n$INSTDIR"
LangString notWhole ${LANG_GERMAN} "Einige Dateien ließen sich nicht schreiben. Die Installation ist nicht vollständig:$\r$\n$INSTDIR"
; Every name of each, since the one who uninstalls may have another language by then.
!define CONSOLE_EN "Road reports in a console"
!define CONSOLE_DE "Straßenberichte in einer Konsole"
!define DESKTOP_EN "Road reports"
!define DESKTOP_DE "Straßenberichte"
!define HELP_EN "Help"
!define HELP_DE "Hilfe"
!define EXAMPLES_EN "Examples"
!define EXAMPLES_DE "Beispiele"
!define UNINSTALL_EN "Uninstall"
!define UNINSTALL_DE "Deinstallieren"
LangString console ${LANG_ENGLISH} "${CONSOLE_EN}"
LangString console ${LANG_GERMAN} "${CONSOLE_DE}"
LangString desktop ${LANG_ENGLISH} "${DESKTOP_EN}"
LangString desktop ${LANG_GERMAN} "${DESKTOP_DE}"
LangString help ${LANG_ENGLISH} "${HELP_EN}"
LangString help ${LANG_GERMAN} "${HELP_DE}"
LangString examples ${LANG_ENGLISH} "${EXAMPLES_EN}"
LangString examples ${LANG_GERMAN} "${EXAMPLES_DE}"
LangString uninstall ${LANG_ENGLISH} "${UNINSTALL_EN}"
LangString uninstall ${LANG_GERMAN} "${UNINSTALL_DE}"
LangString drawing ${LANG_ENGLISH} "LandXML drawing"
LangString drawing ${LANG_GERMAN} "LandXML-Zeichnung"
LangString helpLanguage ${LANG_ENGLISH} "en"
LangString helpLanguage ${LANG_GERMAN} "de"

; Ends with 2 where the program is there and runs: better before anything was changed than in the middle.
!macro StopIfInUse
  ${If} ${FileExists} "$INSTDIR\bin\lvxhost.exe"
    ClearErrors
    FileOpen $0 "$INSTDIR\bin\lvxhost.exe" a
    ${If} ${Errors}
      MessageBox MB_OK|MB_ICONSTOP "$(isInUse)" /SD IDOK
      SetErrorLevel 2
      Quit
    ${EndIf}
    FileClose $0
  ${EndIf}
  ${If} ${FileExists} "$INSTDIR\bin\lvxhost-desktop.exe"
    ClearErrors
    FileOpen $0 "$INSTDIR\bin\lvxhost-desktop.exe" a
    ${If} ${Errors}
      MessageBox MB_OK|MB_ICONSTOP "$(isInUse)" /SD IDOK
      SetErrorLevel 2
      Quit
    ${EndIf}
    FileClose $0
  ${EndIf}
!macroend

; Takes a file off that is as old as the licence, which came with it; one that a user wrote stays.
!macro RemoveUnchanged file
  !insertmacro _RemoveUnchanged "${file}" ${__LINE__}
!macroend
!macro _RemoveUnchanged file unique
  ClearErrors
  GetFileTime "${file}" $0 $1
  GetFileTime "$INSTDIR\LICENSE" $2 $3
  IfErrors changed${unique}
  StrCmp "$0.$1" "$2.$3" 0 changed${unique}
  Delete "${file}"
  changed${unique}:
!macroend

Section
  !insertmacro StopIfInUse
  ; What an older version brought goes first: this one may have other files.
  ReadRegStr $1 HKCU "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $1 != ""
  ${AndIf} ${FileExists} "$1\Uninstall.exe"
    CopyFiles /SILENT "$1\Uninstall.exe" "$PLUGINSDIR\Uninstall.exe"
    ClearErrors
    ExecWait '"$PLUGINSDIR\Uninstall.exe" /S _?=$1' $2
    ${If} ${Errors}
    ${OrIf} $2 != 0
      MessageBox MB_OK|MB_ICONSTOP "$(isInUse)" /SD IDOK
      SetErrorLevel 2
      Quit
    ${EndIf}
  ${EndIf}

  ClearErrors
  !include "${FOLDER}/install.nsh"
  SetOutPath "$INSTDIR"
  SetOverwrite on
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  ${If} ${Errors}
    MessageBox MB_OK|MB_ICONSTOP "$(notWhole)" /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}

  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\Uninstall.exe"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "The ${NAME} authors"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE}
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1

  ; "Open with": what a drawing holds, in a console that stays open.
  WriteRegStr HKCU "Software\Classes\${TYPE}" "" "$(drawing)"
  WriteRegStr HKCU "Software\Classes\${TYPE}\Application" "ApplicationName" "${NAME}"
  WriteRegStr HKCU "Software\Classes\${TYPE}\shell\open" "FriendlyAppName" "${NAME}"
  WriteRegStr HKCU "Software\Classes\${TYPE}\shell\open\command" "" \
    '"$SYSDIR\cmd.exe" /d /s /k ""$INSTDIR\bin\lvxhost.exe" info "%1""'
  WriteRegStr HKCU "Software\Classes\.xml\OpenWithProgids" "${TYPE}" ""

  CreateDirectory "$SMPROGRAMS\${NAME}"
  SetOutPath "$DOCUMENTS"  ; where the console begins
  CreateShortCut "$SMPROGRAMS\${NAME}\$(console).lnk" "$SYSDIR\cmd.exe" '/d /k "set PATH=$INSTDIR\bin;%PATH%"'
!ifdef DESKTOP
  CreateShortCut "$SMPROGRAMS\${NAME}\$(desktop).lnk" "$INSTDIR\bin\lvxhost-desktop.exe"
!endif
  SetOutPath "$INSTDIR"
  CreateShortCut "$SMPROGRAMS\${NAME}\$(help).lnk" "$INSTDIR\share\lvxhost\help\$(helpLanguage)\Vantor Lorvix Extension.chm"
  CreateShortCut "$SMPROGRAMS\${NAME}\$(examples).lnk" "$INSTDIR\examples"
  CreateShortCut "$SMPROGRAMS\${NAME}\$(uninstall).lnk" "$INSTDIR\Uninstall.exe"
  ${RefreshShellIcons}
SectionEnd

Function .onInit
  InitPluginsDir
FunctionEnd

Section Uninstall
  !insertmacro StopIfInUse
  SetOutPath "$TEMP"  ; or this folder would be in use itself
  !include "${FOLDER}/remove.nsh"
  Delete "$INSTDIR\Uninstall.exe"
  RMDir "$INSTDIR"

  !macro RemoveShortcut language
    Delete "$SMPROGRAMS\${NAME}\${CONSOLE_${language}}.lnk"
    Delete "$SMPROGRAMS\${NAME}\${DESKTOP_${language}}.lnk"
    Delete "$SMPROGRAMS\${NAME}\${HELP_${language}}.lnk"
    Delete "$SMPROGRAMS\${NAME}\${EXAMPLES_${language}}.lnk"
    Delete "$SMPROGRAMS\${NAME}\${UNINSTALL_${language}}.lnk"
  !macroend
  !insertmacro RemoveShortcut EN
  !insertmacro RemoveShortcut DE
  RMDir "$SMPROGRAMS\${NAME}"
  DeleteRegKey HKCU "Software\Classes\${TYPE}"
  DeleteRegValue HKCU "Software\Classes\.xml\OpenWithProgids" "${TYPE}"
  DeleteRegKey /ifempty HKCU "Software\Classes\.xml\OpenWithProgids"
  DeleteRegKey /ifempty HKCU "Software\Classes\.xml"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
  ${RefreshShellIcons}
SectionEnd
