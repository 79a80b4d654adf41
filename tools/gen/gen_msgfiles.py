#!/usr/bin/env python3
"""Writes the bundled message files home/locales/<language>/<charset>/{cslib,ctlib}.loc.

The section list and the message list (names, sections, numbers and the values each message
takes) are read from include/comnlib/msg.h, so the files cannot drift from the library; the
texts and SQL states are held here, one table per language. Every text is checked before it
is written: it must name exactly the values its message takes (%1! .. %n!), encode in the
target character set, and, in Shift-JIS, hold no byte 0x5C (the reader would take it for a
backslash).

Usage: gen_msgfiles.py [--check] [ROOT]
"""
import os
import re
import sys

from gen_output import emit, parse_args

# (language, charset directory, Python codec)
TARGETS = [
    ("us_english", "iso_1", "latin-1"),
    ("french", "iso_1", "latin-1"),
    ("german", "iso_1", "latin-1"),
    ("japanese", "eucjis", "euc_jp"),
    ("japanese", "sjis", "shift_jis"),
    ("us_english", "utf8", "utf-8"),
    ("french", "utf8", "utf-8"),
    ("german", "utf8", "utf-8"),
    ("japanese", "utf8", "utf-8"),
]

# Sections of each file: cslib.loc holds every section; ctlib.loc the client layer's view of
# this library's results (fallbacks, names, statuses, conversions, localisation).
FILES = {
    "cslib.loc": None,
    "ctlib.loc": ["fallback", "layers", "origins", "status", "conversion", "localisation"],
}

SQLSTATE = {
    "COM_MSG_FAILED": "HY000", "COM_MSG_NOMEM": "HY001", "COM_MSG_PENDING": "HY010",
    "COM_MSG_QUIET": "HY010", "COM_MSG_BUSY": "HY010", "COM_MSG_INTERRUPT": "HY000",
    "COM_MSG_CANCELED": "HY008", "COM_MSG_ROW_FAIL": "01S01", "COM_MSG_NOMSG": "02000",
    "COM_MSG_TIMED_OUT": "HYT00", "COM_MSG_TDS_BADTYPE": "08S01",
    "COM_MSG_TDS_BADDATATYPE": "HY004", "COM_MSG_CONV_OVERFLOW": "22003",
    "COM_MSG_CONV_UNDERFLOW": "22003", "COM_MSG_CONV_PRECISION": "22003",
    "COM_MSG_CONV_SCALE": "22003", "COM_MSG_CONV_SYNTAX": "22018",
    "COM_MSG_CONV_FORMAT": "HY024", "COM_MSG_CONV_DOMAIN": "22023",
    "COM_MSG_CONV_DIVZERO": "22012", "COM_MSG_CONV_TRUNCATED": "01004",
    "COM_MSG_CONV_STYLE": "22007", "COM_MSG_CONV_BADXLT": "22021",
    "COM_MSG_CONV_NOXLT": "22021", "COM_MSG_INTL_FAILED": "HY000",
    "COM_MSG_LOCALE_UNKNOWN": "HY000", "COM_MSG_LOCFILE_UNREADABLE": "HY000",
    "COM_MSG_LOCNAME_TOOLONG": "22001", "COM_MSG_NO_DATETIME": "HY000",
    "COM_MSG_NO_HOME": "HY000", "COM_MSG_CHARSET_UNLOADABLE": "HY000",
    "COM_MSG_MSGFILE_NOSECTION": "HY000", "COM_MSG_MSGFILE_NOMESSAGE": "HY000",
    "COM_MSG_MSGFILE_BADENTRY": "HY000",
}

# Per language: fallback texts 1..4, layer names 1..4, origin names 1..6, then the messages.
# Values: sd/ss messages take %1!; sss/sds take %1! and %2! (the second and third builder
# argument, in that order).
TEXTS = {
    "us_english": {
        "fallback": [
            "no memory was left to build the message text",
            "the name of the reporting layer is not in the message file",
            "the name of the error's origin is not in the message file",
            "the message is not in the message file",
        ],
        "layers": ["client library", "bulk-copy library", "older client library",
                   "common library"],
        "origins": ["external error", "usage error", "resource error", "conversion error",
                    "internationalisation library error", "configuration error"],
        "COM_MSG_FAILED": "The operation failed; check the arguments and the order of the calls that led to it.",
        "COM_MSG_NOMEM": "Memory could not be allocated; free some memory or raise the process's memory limit, then try again.",
        "COM_MSG_PENDING": "The operation has not completed yet; wait for its completion before starting another one.",
        "COM_MSG_QUIET": "There is no operation to wait for: none has been started, or all have completed.",
        "COM_MSG_BUSY": "The connection is busy with another operation; wait for that operation to complete first.",
        "COM_MSG_INTERRUPT": "The wait was interrupted before the operation completed; wait again for its completion.",
        "COM_MSG_CANCELED": "The operation was cancelled before it completed; its results are discarded.",
        "COM_MSG_ROW_FAIL": "A row could not be fetched; the rows after it can still be read.",
        "COM_MSG_NOMSG": "No message is waiting to be read.",
        "COM_MSG_TIMED_OUT": "The operation did not complete in the time allowed; check the timeout setting and whether the server is responding.",
        "COM_MSG_TDS_BADTYPE": "The server sent the unknown TDS datatype code %1!; it may be using a protocol version this library does not support.",
        "COM_MSG_TDS_BADDATATYPE": "Datatype %1! has no TDS form; datatype ids run from 0 to 23.",
        "COM_MSG_CONV_OVERFLOW": "Converting %1! to %2!: the value lies outside the range of %2!.",
        "COM_MSG_CONV_UNDERFLOW": "Converting %1! to %2!: the value is too close to zero for %2!.",
        "COM_MSG_CONV_PRECISION": "Converting %1! to %2!: the value has more digits than the destination's precision allows.",
        "COM_MSG_CONV_SCALE": "Converting %1! to %2!: the value has more decimal places than the destination's scale allows.",
        "COM_MSG_CONV_SYNTAX": "Converting %1! to %2!: the source text is not a valid %2! value; check its digits, sign, separators and spelling.",
        "COM_MSG_CONV_FORMAT": "The destination format asks for zero padding and blank padding at once; set only one of the two.",
        "COM_MSG_CONV_DOMAIN": "The %1! source is not a valid value of its own datatype: a bit other than 0 or 1, or a numeric whose precision or scale is out of range.",
        "COM_MSG_CONV_DIVZERO": "Division by zero: the divisor is zero, so the operation has no result.",
        "COM_MSG_CONV_TRUNCATED": "The result was cut to the destination's %1! bytes; give a longer destination to receive all of it.",
        "COM_MSG_CONV_STYLE": "Date style %1! is not a known style; choose one of the documented date styles.",
        "COM_MSG_CONV_BADXLT": "Translating from character set %1! to %2!: characters without a counterpart in %2! were replaced by \"?\".",
        "COM_MSG_CONV_NOXLT": "No translation exists from character set %1! to %2!.",
        "COM_MSG_INTL_FAILED": "The internationalisation library failed while reading %1!; check that the file is readable and well formed.",
        "COM_MSG_LOCALE_UNKNOWN": "Locale name \"%1!\" is not listed in section [linux] of locales/locales.dat under the installation home; check LC_ALL and LANG.",
        "COM_MSG_LOCFILE_UNREADABLE": "Localisation file %1! cannot be read; check that it exists and that it is readable.",
        "COM_MSG_LOCNAME_TOOLONG": "The locale name is longer than the buffer given for it; give a buffer of at least 256 bytes.",
        "COM_MSG_NO_DATETIME": "File %1! has no [datetime] section, so the locale's date and time names cannot be loaded.",
        "COM_MSG_NO_HOME": "The installation home is unknown; set VELDAR to the installation directory.",
        "COM_MSG_CHARSET_UNLOADABLE": "Character set %1! could not be loaded; check charsets/%1!/charset.loc and its sort order files under the installation home.",
        "COM_MSG_MSGFILE_NOSECTION": "Message file %1! lacks one or more of the sections its caller needs; reinstall the file.",
        "COM_MSG_MSGFILE_NOMESSAGE": "Message %1! is not in message file %2!.",
        "COM_MSG_MSGFILE_BADENTRY": "Entry %1! of message file %2! lacks its SQL state or its text.",
    },
    "french": {
        "fallback": [
            "plus assez de mémoire pour construire le texte du message",
            "le nom de la couche est absent du fichier de messages",
            "le nom de l'origine de l'erreur est absent du fichier de messages",
            "le message est absent du fichier de messages",
        ],
        "layers": ["bibliothèque client", "bibliothèque de copie en bloc",
                   "ancienne bibliothèque client", "bibliothèque commune"],
        "origins": ["erreur externe", "erreur d'utilisation", "erreur de ressource",
                    "erreur de conversion", "erreur de la bibliothèque d'internationalisation",
                    "erreur de configuration"],
        "COM_MSG_FAILED": "L'opération a échoué ; vérifiez les arguments et l'ordre des appels qui y ont mené.",
        "COM_MSG_NOMEM": "Impossible d'allouer de la mémoire ; libérez de la mémoire ou relevez la limite du processus, puis réessayez.",
        "COM_MSG_PENDING": "L'opération n'est pas encore terminée ; attendez sa fin avant d'en lancer une autre.",
        "COM_MSG_QUIET": "Aucune opération à attendre : aucune n'a été lancée, ou toutes sont terminées.",
        "COM_MSG_BUSY": "La connexion est occupée par une autre opération ; attendez d'abord la fin de celle-ci.",
        "COM_MSG_INTERRUPT": "L'attente a été interrompue avant la fin de l'opération ; attendez de nouveau sa fin.",
        "COM_MSG_CANCELED": "L'opération a été annulée avant sa fin ; ses résultats sont abandonnés.",
        "COM_MSG_ROW_FAIL": "Une ligne n'a pas pu être lue ; les lignes suivantes restent lisibles.",
        "COM_MSG_NOMSG": "Aucun message n'attend d'être lu.",
        "COM_MSG_TIMED_OUT": "L'opération ne s'est pas terminée dans le délai imparti ; vérifiez le délai d'attente et que le serveur répond.",
        "COM_MSG_TDS_BADTYPE": "Le serveur a envoyé le code de type TDS inconnu %1! ; il utilise peut-être une version du protocole que cette bibliothèque ne prend pas en charge.",
        "COM_MSG_TDS_BADDATATYPE": "Le type de données %1! n'a pas de forme TDS ; les identifiants de type vont de 0 à 23.",
        "COM_MSG_CONV_OVERFLOW": "Conversion de %1! en %2! : la valeur sort des limites de %2!.",
        "COM_MSG_CONV_UNDERFLOW": "Conversion de %1! en %2! : la valeur est trop proche de zéro pour %2!.",
        "COM_MSG_CONV_PRECISION": "Conversion de %1! en %2! : la valeur a plus de chiffres que la précision de la destination n'en permet.",
        "COM_MSG_CONV_SCALE": "Conversion de %1! en %2! : la valeur a plus de décimales que l'échelle de la destination n'en permet.",
        "COM_MSG_CONV_SYNTAX": "Conversion de %1! en %2! : le texte source n'est pas une valeur %2! valide ; vérifiez ses chiffres, son signe, ses séparateurs et son orthographe.",
        "COM_MSG_CONV_FORMAT": "Le format de destination demande à la fois un remplissage par des zéros et par des blancs ; n'en choisissez qu'un.",
        "COM_MSG_CONV_DOMAIN": "La source %1! n'est pas une valeur valide de son propre type : un bit autre que 0 ou 1, ou un numérique dont la précision ou l'échelle est hors limites.",
        "COM_MSG_CONV_DIVZERO": "Division par zéro : le diviseur est nul, l'opération n'a donc pas de résultat.",
        "COM_MSG_CONV_TRUNCATED": "Le résultat a été tronqué aux %1! octets de la destination ; donnez une destination plus longue pour le recevoir en entier.",
        "COM_MSG_CONV_STYLE": "Le style de date %1! est inconnu ; choisissez l'un des styles de date documentés.",
        "COM_MSG_CONV_BADXLT": "Traduction du jeu de caractères %1! vers %2! : les caractères sans équivalent dans %2! ont été remplacés par « ? ».",
        "COM_MSG_CONV_NOXLT": "Aucune traduction n'existe du jeu de caractères %1! vers %2!.",
        "COM_MSG_INTL_FAILED": "La bibliothèque d'internationalisation a échoué en lisant %1! ; vérifiez que le fichier est lisible et bien formé.",
        "COM_MSG_LOCALE_UNKNOWN": "Le nom de locale « %1! » ne figure pas dans la section [linux] de locales/locales.dat du répertoire d'installation ; vérifiez LC_ALL et LANG.",
        "COM_MSG_LOCFILE_UNREADABLE": "Le fichier de localisation %1! ne peut pas être lu ; vérifiez qu'il existe et qu'il est lisible.",
        "COM_MSG_LOCNAME_TOOLONG": "Le nom de locale est plus long que le tampon prévu pour lui ; donnez un tampon d'au moins 256 octets.",
        "COM_MSG_NO_DATETIME": "Le fichier %1! n'a pas de section [datetime] ; les noms de dates et d'heures de la locale ne peuvent pas être chargés.",
        "COM_MSG_NO_HOME": "Le répertoire d'installation est inconnu ; donnez à VELDAR le chemin du répertoire d'installation.",
        "COM_MSG_CHARSET_UNLOADABLE": "Le jeu de caractères %1! n'a pas pu être chargé ; vérifiez charsets/%1!/charset.loc et ses fichiers d'ordre de tri dans le répertoire d'installation.",
        "COM_MSG_MSGFILE_NOSECTION": "Il manque au fichier de messages %1! une ou plusieurs des sections dont l'appelant a besoin ; réinstallez le fichier.",
        "COM_MSG_MSGFILE_NOMESSAGE": "Le message %1! est absent du fichier de messages %2!.",
        "COM_MSG_MSGFILE_BADENTRY": "Il manque à l'entrée %1! du fichier de messages %2! son état SQL ou son texte.",
    },
    "german": {
        "fallback": [
            "nicht genug Speicher, um den Meldungstext zu erstellen",
            "der Name der Schicht fehlt in der Meldungsdatei",
            "der Name des Fehlerursprungs fehlt in der Meldungsdatei",
            "die Meldung fehlt in der Meldungsdatei",
        ],
        "layers": ["Client-Bibliothek", "Massenkopier-Bibliothek", "ältere Client-Bibliothek",
                   "gemeinsame Bibliothek"],
        "origins": ["externer Fehler", "Aufruffehler", "Ressourcenfehler",
                    "Konvertierungsfehler", "Fehler der Internationalisierungsbibliothek",
                    "Konfigurationsfehler"],
        "COM_MSG_FAILED": "Der Vorgang ist fehlgeschlagen; prüfen Sie die Argumente und die Reihenfolge der vorangegangenen Aufrufe.",
        "COM_MSG_NOMEM": "Es konnte kein Speicher belegt werden; geben Sie Speicher frei oder erhöhen Sie die Speichergrenze des Prozesses und versuchen Sie es erneut.",
        "COM_MSG_PENDING": "Der Vorgang ist noch nicht abgeschlossen; warten Sie seinen Abschluss ab, bevor Sie einen weiteren beginnen.",
        "COM_MSG_QUIET": "Es gibt keinen Vorgang, auf den gewartet werden kann: keiner wurde begonnen, oder alle sind abgeschlossen.",
        "COM_MSG_BUSY": "Die Verbindung ist mit einem anderen Vorgang beschäftigt; warten Sie zuerst dessen Abschluss ab.",
        "COM_MSG_INTERRUPT": "Das Warten wurde unterbrochen, bevor der Vorgang abgeschlossen war; warten Sie erneut auf seinen Abschluss.",
        "COM_MSG_CANCELED": "Der Vorgang wurde vor seinem Abschluss abgebrochen; seine Ergebnisse werden verworfen.",
        "COM_MSG_ROW_FAIL": "Eine Zeile konnte nicht gelesen werden; die folgenden Zeilen können weiterhin gelesen werden.",
        "COM_MSG_NOMSG": "Es wartet keine Meldung darauf, gelesen zu werden.",
        "COM_MSG_TIMED_OUT": "Der Vorgang wurde nicht in der erlaubten Zeit abgeschlossen; prüfen Sie die Zeitbegrenzung und ob der Server antwortet.",
        "COM_MSG_TDS_BADTYPE": "Der Server hat den unbekannten TDS-Datentypcode %1! gesendet; er verwendet möglicherweise eine Protokollversion, die diese Bibliothek nicht unterstützt.",
        "COM_MSG_TDS_BADDATATYPE": "Der Datentyp %1! hat keine TDS-Form; Datentypkennungen reichen von 0 bis 23.",
        "COM_MSG_CONV_OVERFLOW": "Umwandlung von %1! in %2!: der Wert liegt außerhalb des Bereichs von %2!.",
        "COM_MSG_CONV_UNDERFLOW": "Umwandlung von %1! in %2!: der Wert liegt für %2! zu nahe bei null.",
        "COM_MSG_CONV_PRECISION": "Umwandlung von %1! in %2!: der Wert hat mehr Ziffern, als die Genauigkeit des Ziels erlaubt.",
        "COM_MSG_CONV_SCALE": "Umwandlung von %1! in %2!: der Wert hat mehr Nachkommastellen, als die Skala des Ziels erlaubt.",
        "COM_MSG_CONV_SYNTAX": "Umwandlung von %1! in %2!: der Quelltext ist kein gültiger %2!-Wert; prüfen Sie Ziffern, Vorzeichen, Trennzeichen und Schreibweise.",
        "COM_MSG_CONV_FORMAT": "Das Zielformat verlangt zugleich Auffüllen mit Nullen und mit Leerzeichen; wählen Sie nur eines davon.",
        "COM_MSG_CONV_DOMAIN": "Die Quelle vom Typ %1! ist kein gültiger Wert ihres eigenen Datentyps: ein Bit außer 0 oder 1, oder ein numerischer Wert mit unzulässiger Genauigkeit oder Skala.",
        "COM_MSG_CONV_DIVZERO": "Division durch null: der Divisor ist null, daher hat der Vorgang kein Ergebnis.",
        "COM_MSG_CONV_TRUNCATED": "Das Ergebnis wurde auf die %1! Bytes des Ziels gekürzt; geben Sie ein längeres Ziel an, um es vollständig zu erhalten.",
        "COM_MSG_CONV_STYLE": "Der Datumsstil %1! ist unbekannt; wählen Sie einen der dokumentierten Datumsstile.",
        "COM_MSG_CONV_BADXLT": "Übersetzung vom Zeichensatz %1! in %2!: Zeichen ohne Entsprechung in %2! wurden durch \"?\" ersetzt.",
        "COM_MSG_CONV_NOXLT": "Es gibt keine Übersetzung vom Zeichensatz %1! in %2!.",
        "COM_MSG_INTL_FAILED": "Die Internationalisierungsbibliothek ist beim Lesen von %1! gescheitert; prüfen Sie, ob die Datei lesbar und korrekt aufgebaut ist.",
        "COM_MSG_LOCALE_UNKNOWN": "Der Locale-Name \"%1!\" steht nicht im Abschnitt [linux] von locales/locales.dat im Installationsverzeichnis; prüfen Sie LC_ALL und LANG.",
        "COM_MSG_LOCFILE_UNREADABLE": "Die Lokalisierungsdatei %1! kann nicht gelesen werden; prüfen Sie, ob sie existiert und lesbar ist.",
        "COM_MSG_LOCNAME_TOOLONG": "Der Locale-Name ist länger als der dafür bereitgestellte Puffer; geben Sie einen Puffer von mindestens 256 Bytes an.",
        "COM_MSG_NO_DATETIME": "Die Datei %1! hat keinen Abschnitt [datetime]; die Datums- und Zeitnamen der Locale können nicht geladen werden.",
        "COM_MSG_NO_HOME": "Das Installationsverzeichnis ist unbekannt; setzen Sie VELDAR auf das Installationsverzeichnis.",
        "COM_MSG_CHARSET_UNLOADABLE": "Der Zeichensatz %1! konnte nicht geladen werden; prüfen Sie charsets/%1!/charset.loc und seine Sortierdateien im Installationsverzeichnis.",
        "COM_MSG_MSGFILE_NOSECTION": "Der Meldungsdatei %1! fehlen Abschnitte, die ihr Aufrufer braucht; installieren Sie die Datei neu.",
        "COM_MSG_MSGFILE_NOMESSAGE": "Die Meldung %1! fehlt in der Meldungsdatei %2!.",
        "COM_MSG_MSGFILE_BADENTRY": "Dem Eintrag %1! der Meldungsdatei %2! fehlt der SQL-Status oder der Text.",
    },
    "japanese": {
        "fallback": [
            "メッセージの文字列を作るためのメモリが足りません",
            "メッセージファイルにレイヤ名がありません",
            "メッセージファイルにエラーの発生元の名前がありません",
            "メッセージファイルにメッセージがありません",
        ],
        "layers": ["クライアントライブラリ", "一括コピーライブラリ", "旧クライアントライブラリ",
                   "共通ライブラリ"],
        "origins": ["外部エラー", "使用法エラー", "資源エラー", "変換エラー",
                    "国際化ライブラリのエラー", "設定エラー"],
        "COM_MSG_FAILED": "操作に失敗しました。引数と、それまでの呼び出しの順序を確認してください。",
        "COM_MSG_NOMEM": "メモリを割り当てられませんでした。メモリを解放するか、プロセスのメモリ制限を上げてから再試行してください。",
        "COM_MSG_PENDING": "操作はまだ完了していません。完了を待ってから次の操作を始めてください。",
        "COM_MSG_QUIET": "待つべき操作がありません。操作が開始されていないか、すべて完了しています。",
        "COM_MSG_BUSY": "接続は別の操作で使用中です。先にその操作の完了を待ってください。",
        "COM_MSG_INTERRUPT": "操作の完了前に待機が中断されました。もう一度完了を待ってください。",
        "COM_MSG_CANCELED": "操作は完了前に取り消されました。その結果は破棄されます。",
        "COM_MSG_ROW_FAIL": "行を取り出せませんでした。後続の行は引き続き読み取れます。",
        "COM_MSG_NOMSG": "読み取りを待っているメッセージはありません。",
        "COM_MSG_TIMED_OUT": "操作は許された時間内に完了しませんでした。タイムアウトの設定と、サーバが応答しているかを確認してください。",
        "COM_MSG_TDS_BADTYPE": "サーバが不明な TDS データ型コード %1! を送りました。このライブラリが対応していないプロトコルバージョンを使っているのかもしれません。",
        "COM_MSG_TDS_BADDATATYPE": "データ型 %1! には TDS 形式がありません。データ型 ID は 0 から 23 までです。",
        "COM_MSG_CONV_OVERFLOW": "%1! から %2! への変換: 値が %2! の範囲外です。",
        "COM_MSG_CONV_UNDERFLOW": "%1! から %2! への変換: 値が 0 に近すぎて %2! では扱えません。",
        "COM_MSG_CONV_PRECISION": "%1! から %2! への変換: 値の桁数が変換先の精度を超えています。",
        "COM_MSG_CONV_SCALE": "%1! から %2! への変換: 値の小数部の桁数が変換先の位取りを超えています。",
        "COM_MSG_CONV_SYNTAX": "%1! から %2! への変換: 変換元の文字列は %2! の値として正しくありません。数字、符号、区切り文字、つづりを確認してください。",
        "COM_MSG_CONV_FORMAT": "変換先の書式がゼロ埋めと空白埋めを同時に指定しています。どちらか一方だけを指定してください。",
        "COM_MSG_CONV_DOMAIN": "%1! の変換元の値が、その型の値として正しくありません。0 と 1 以外のビット、または精度か位取りが範囲外の数値です。",
        "COM_MSG_CONV_DIVZERO": "ゼロによる除算です。除数が 0 なので、演算の結果はありません。",
        "COM_MSG_CONV_TRUNCATED": "結果は変換先の %1! バイトに切り詰められました。すべてを受け取るには、より長い変換先を指定してください。",
        "COM_MSG_CONV_STYLE": "日付スタイル %1! は不明です。文書化された日付スタイルのいずれかを選んでください。",
        "COM_MSG_CONV_BADXLT": "文字セット %1! から %2! への変換: %2! に対応する文字がない文字は \"?\" に置き換えられました。",
        "COM_MSG_CONV_NOXLT": "文字セット %1! から %2! への変換はありません。",
        "COM_MSG_INTL_FAILED": "国際化ライブラリが %1! の読み取りに失敗しました。ファイルが読み取れるか、正しい形式かを確認してください。",
        "COM_MSG_LOCALE_UNKNOWN": "ロケール名 \"%1!\" は、インストールディレクトリの locales/locales.dat の [linux] セクションにありません。LC_ALL と LANG を確認してください。",
        "COM_MSG_LOCFILE_UNREADABLE": "ローカライズファイル %1! を読み取れません。ファイルが存在し、読み取れるかを確認してください。",
        "COM_MSG_LOCNAME_TOOLONG": "ロケール名が、そのために渡されたバッファより長くなっています。256 バイト以上のバッファを渡してください。",
        "COM_MSG_NO_DATETIME": "ファイル %1! に [datetime] セクションがないため、ロケールの日付と時刻の名前を読み込めません。",
        "COM_MSG_NO_HOME": "インストールディレクトリが不明です。VELDAR にインストールディレクトリを設定してください。",
        "COM_MSG_CHARSET_UNLOADABLE": "文字セット %1! を読み込めませんでした。インストールディレクトリの charsets/%1!/charset.loc と、その並べ順ファイルを確認してください。",
        "COM_MSG_MSGFILE_NOSECTION": "メッセージファイル %1! には、呼び出し元が必要とするセクションの一部がありません。ファイルを再インストールしてください。",
        "COM_MSG_MSGFILE_NOMESSAGE": "メッセージ %1! がメッセージファイル %2! にありません。",
        "COM_MSG_MSGFILE_BADENTRY": "メッセージファイル %2! の項目 %1! に SQL 状態またはテキストがありません。",
    },
}

HEADER = """\
; Messages of the common library: {language}, character set {charset}.
; Generated by tools/gen/gen_msgfiles.py from the message list in include/comnlib/msg.h;
; change the script and run it again rather than editing this file.
;
; Each entry reads: number = SQL state, "text". Sections fallback, layers and origins hold
; the texts used to assemble a message; the others hold the messages, numbered within their
; section. A text names its values by position: %1! and %2! (see docs/messages.md).
"""


def read_header(root):
    text = open(os.path.join(root, "include/comnlib/msg.h"), encoding="ascii").read()
    sections = re.findall(r'X\((COM_ERRSEC_\w+), (\d+), "(\w+)"\)', text)
    sections = [(name, int(ident), label) for name, ident, label in sections]
    origins = dict(re.findall(r"#define (COM_ORIGIN_\w+) (\d+)", text))
    section_ids = {name: ident for name, ident, _ in sections}
    messages = []
    for name, origin, section, number, values in re.findall(
            r"X\((COM_MSG_\w+), (\w+), (\w+), (\d+), (\w+)\)", text):
        messages.append((name, int(origins[origin]), section_ids[section], int(number), values))
    if not sections or not messages:
        sys.exit("gen_msgfiles: cannot find the section or message list in msg.h")
    return sections, messages


def check_markers(where, text, values):
    """The markers a text may use: %1! for each value after the prefix. Every value the
    message takes must appear, and no other '%' may occur."""
    allowed = len(values) - 1
    used = set()
    for m in re.finditer(r"%(.?)(.?)", text):
        digit, bang = m.group(1), m.group(2)
        if digit == "%":
            continue
        if not (digit.isdigit() and bang == "!" and 1 <= int(digit) <= allowed):
            sys.exit(f"gen_msgfiles: {where}: bad marker {m.group(0)!r}")
        used.add(int(digit))
    if used != set(range(1, allowed + 1)):
        sys.exit(f"gen_msgfiles: {where}: uses values {sorted(used)}, takes {allowed}")


def quote(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def render(language, charset, codec, sections, messages, wanted):
    texts = TEXTS[language]
    lines = [HEADER.format(language=language, charset=charset)]
    for name, ident, label in sections:
        if wanted and label not in wanted:
            continue
        lines.append(f"[{label}]")
        if label in ("fallback", "layers", "origins"):
            state = "HY000" if label == "fallback" else "00000"
            for i, t in enumerate(texts[label], 1):
                lines.append(f"{i} = {state}, {quote(t)}")
        else:
            for mname, _, msec, number, values in messages:
                if msec != ident:
                    continue
                text = texts[mname]
                check_markers(f"{language} {mname}", text, values)
                lines.append(f"{number} = {SQLSTATE[mname]}, {quote(text)}")
        lines.append("")
    data = "\n".join(lines).encode(codec)
    if codec == "shift_jis":
        for i, line in enumerate(data.split(b"\n"), 1):
            ascii_backslashes = line.decode(codec).count("\\")
            if line.count(b"\\") != ascii_backslashes:
                sys.exit(f"gen_msgfiles: {language}/{charset} line {i}: a character encodes "
                         "with the byte 0x5C; choose another word")
    return data


def main(argv):
    check, root = parse_args(argv)
    sections, messages = read_header(root)
    for language in TEXTS:
        missing = [m[0] for m in messages if m[0] not in TEXTS[language]]
        if missing:
            sys.exit(f"gen_msgfiles: {language} lacks {missing}")
    files = {}
    for language, charset, codec in TARGETS:
        for fname, wanted in FILES.items():
            path = os.path.join("home", "locales", language, charset, fname)
            files[path] = render(language, charset, codec, sections, messages, wanted)
    return emit(files, check, root)

if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
