#include "calendar/calendar_record.h"

void CCalendarEx::Reset() {
    m_lCalType = -1;
    m_lFlag = 0;
    m_nReserved1 = 0;
    m_arrReserved3.fill(-1);
    m_nRingTone = 0;
    m_arrReserved5.fill(0);
    m_nReserved6 = 0;
    m_lRecurType = 0;
    m_lRecurDay = 0;
    m_lRecurMonth = 0;
    m_lRecurInstance = 0;
    m_lRecurWeekDay = 0;
    m_lRecurWeekMask = 0;
    m_lRecurInterval = 1;
    m_lRecurRepeat = 0;
    m_bRecurHasEndDate = 0;
    m_lReminderMinutes = 0;
    m_nPriority = 1;
    m_arrReserved7.fill(0);
    m_nReserved8 = 0;
    m_bAlldayEvent = 0;
    m_nReserved9 = 0;
    m_strCsFolder.clear();
    m_strPIMID.clear();
    m_strReserved4.clear();
    for (COleDateTime* const date :
         {&m_dtStartTime, &m_dtEndTime, &m_dtLastModified, &m_dtReserved2, &m_dtRecurEndDate}) {
        *date = COleDateTime();
    }
    m_arrInfo.RemoveAll();
}
